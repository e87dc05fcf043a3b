#ifndef CORVINA_APP_BOARDCHECK_H
#define CORVINA_APP_BOARDCHECK_H

#include "app/options.h"

#include <functional>
#include <string>

namespace corvina
{

/// Runs an engine on a request; a guard may stop the request meanwhile.
using TGuardedRun = std::function<void(TSolveRequest& question, const std::function<void()>& run)>;

/// Walks along the main variant of a problem and asks the engine for the moves that a view of the
/// board would show: after each move of White for Black's best defence, where the variant goes on
/// and the problem's options say so, and behind that defence for the moves of White that still
/// mate. Returns the text of the first difference from the variant, "" when there is none. Where
/// several defences share the first place the variant may have any of them. A run that is stopped
/// ends the walk. The walk has 2 m_nGuiCheckRepeat - 1 half-moves at most.
std::string CheckMainVariant(const TSolveRequest& problem, const TRunSettings& settings,
                             const TOptions& options, const TGuardedRun& guard);

} // namespace corvina

#endif
