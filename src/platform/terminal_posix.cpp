#include "platform/terminal.h"

#include <sys/ioctl.h>

#include <unistd.h>

namespace corvina
{

bool IsErrorTerminal()
{
    return isatty(STDERR_FILENO);
}

int GetErrorColumns()
{
    constexpr int USUAL = 80;
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : USUAL;
}

} // namespace corvina
