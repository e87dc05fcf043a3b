#ifndef CORVINA_REGISTERS_REGISTERHOST_H
#define CORVINA_REGISTERS_REGISTERHOST_H

#include <cstdio>
#include <string>

namespace corvina
{

/// What the registers ask of the solve that they belong to. Called from any thread.
class TRegisterHost
{
public:
    virtual ~TRegisterHost() = default;

    /// The solve is being given up: all its threads are to stop.
    virtual bool IsAbandoned() const = 0;

    /// Every result is meant to be exact, the passes with heuristics included.
    virtual bool IsExactMode() const { return false; }

    /// Called before memory is reclaimed, since that destroys data: the moment to save them.
    virtual void BeforeSweep() {}

    /// Tells the user of a fault. No lock of the registers is held.
    virtual void ShowError(const std::string& strTitle, const std::string& strText)
    {
        std::fprintf(stderr, "%s: %s\n", strTitle.c_str(), strText.c_str());
    }
};

} // namespace corvina

#endif
