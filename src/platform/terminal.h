#ifndef CORVINA_PLATFORM_TERMINAL_H
#define CORVINA_PLATFORM_TERMINAL_H

namespace corvina
{

/// Does a user see standard error on a terminal?
bool IsErrorTerminal();

/// Its width in characters; 80 where the system doesn't tell.
int GetErrorColumns();

} // namespace corvina

#endif
