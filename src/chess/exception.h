#ifndef CORVINA_CHESS_EXCEPTION_H
#define CORVINA_CHESS_EXCEPTION_H

#include <stdexcept>
#include <string>

namespace corvina
{

/// An error that a user can cause: a position, a move or a file that makes no sense.
/// what() is the text that the user sees, word for word (UTF-8).
class ChessException : public std::runtime_error
{
public:
    explicit ChessException(const std::string& strText) : std::runtime_error(strText) {}
};

} // namespace corvina

#endif
