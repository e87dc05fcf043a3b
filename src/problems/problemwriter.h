#ifndef CORVINA_PROBLEMS_PROBLEMWRITER_H
#define CORVINA_PROBLEMS_PROBLEMWRITER_H

#include "problems/collection.h"

#include <string>

namespace corvina
{

/// The text of a problem file: the first line and the problems in the order of their numbers, with
/// the comments of moves in variants or without. UTF-8, with a carriage return in front of each
/// line feed.
std::string ProblemsToText(const TProblemCollection& collection, bool bWithComments);

/// The lines of one problem, line feeds alone.
std::string ProblemToText(const TProblem& problem, bool bWithComments);

/// Puts a carriage return in front of each line feed.
std::string WithCarriageReturns(const std::string& strText);

} // namespace corvina

#endif
