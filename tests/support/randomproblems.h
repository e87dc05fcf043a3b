#ifndef CORVINA_TESTS_SUPPORT_RANDOMPROBLEMS_H
#define CORVINA_TESTS_SUPPORT_RANDOMPROBLEMS_H

#include "problems/problem.h"

#include <memory>
#include <random>
#include <string>

namespace corvina
{

/// A random problem with any of the things that a file can say of one.
std::unique_ptr<TProblem> RandomProblem(std::mt19937& random, std::int32_t nNumber);

/// The entry of a problem as a person could have typed it: options in any order and letter case,
/// short keywords, lists of figures, comments and line ends anywhere. UTF-8.
std::string TypedByHand(const TProblem& problem, std::mt19937& random);

/// Everything that a problem holds. Without bAll what a writer leaves out is missing.
std::string Describe(const TProblem& problem, bool bAll);

} // namespace corvina

#endif
