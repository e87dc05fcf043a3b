#ifndef CORVINA_HEURISTICS_PREDEFINEDLINES_H
#define CORVINA_HEURISTICS_PREDEFINEDLINES_H

#include <span>

namespace corvina
{

/// A line of a known composition, in the form of TPredefinedTables::m_predefinedLines.
struct TPredefinedLine
{
    const char* m_pFen;
    const char* m_pText; ///< null: nothing is known of the composition but its name in the list
};

/// The lines of all compositions; those of one position stand together.
std::span<const TPredefinedLine> PredefinedLines();

} // namespace corvina

#endif
