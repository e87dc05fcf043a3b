#ifndef CORVINA_SEARCH_ENGINECOMMAND_H
#define CORVINA_SEARCH_ENGINECOMMAND_H

#include "search/threadcontext.h"
#include "search/threads/stopblock.h"

#include <optional>

namespace corvina
{

struct TSolveRequest;

/// Control by hand: a user changes, in a running thread, the order in which a node analyses its
/// moves, or lets it pass over some. The thread gives up what it has begun below the node, serves
/// the command there and goes on. What was given up is no result: nothing of it goes to a register.
/// A new order changes the time only. A node of White that has passed moves over answers "doubtful"
/// where it finds no mate, so that the run can't take that for a proof.

/// What becomes of the move at work: TEngineCommand::m_nCommand.
constexpr std::uint8_t ORDER_KEEP = 0;
constexpr std::uint8_t ORDER_SWAP = 1; ///< it changes places with the next move
constexpr std::uint8_t ORDER_LAST = 2; ///< it goes to the end of the list

/// The moves of a node at one moment.
struct TNodeMoves
{
    TChessboard m_board; ///< without parent, thread and request
    TMoveList m_moves;
    int m_nMoves = 0;   ///< 0: there is no such node
    int m_nCurrent = 0; ///< index of the move at work
};

/// What a command needs of the window.
class TEngineDialog
{
public:
    virtual ~TEngineDialog() = default;

    /// "Skip to...": lets the user choose one of the moves; nothing: Cancel. The run goes on
    /// meanwhile.
    virtual std::optional<TMove> ChooseMove(const TNodeMoves& node) = 0;
};

/// What has become of a command.
enum class ECommandSent : std::uint8_t
{
    Sent,
    Off,       ///< the option EnableManualEngineControl is off
    NoThread,  ///< no such thread is running, or it has no node there
    Cancelled, ///< by the user
    Unchanged  ///< the user has chosen the move at work
};

/// Sends a command to a thread of the run: the node with nDepth half-moves left, or with more if
/// there is none, does what nOrderCommand (ORDER_...) says with the move at work; a node of White
/// then goes on by nSkipCommand moves, 1 being the next one. Below 1 the dialog asks for the move
/// to go to. Of an nDepth of 599 half the stipulation is taken. Waits until a command before it has
/// been served; not for its own service. From any thread but those of the run. In a run for all
/// solutions the request notes that it was influenced by hand.
ECommandSent SendEngineCommand(TSolveRequest& request, TEngineDialog& dialog, std::uint16_t nDepth,
                               std::uint16_t nThread, int nOrderCommand, int nSkipCommand);

/// How a list goes on after a command.
struct TServedList
{
    int m_nNext;    ///< index of the move to try next
    int m_nLeftOut; ///< moves in front of it that won't be tried
};

/// Serves a command on the list of a node of White: nIndex is the move that was given up, or when
/// none was, the one to be tried next. A move to go to that isn't there changes nothing.
TServedList ServeOnWhiteList(const TEngineCommand& command, TMove* pMoves, int nMoves, int nIndex,
                             bool bGivenUp);

/// The same for Black, of whose replies none is ever passed over: puts the reply that was given up
/// elsewhere, so that nIndex is the one to try next.
void ServeOnBlackList(const TEngineCommand& command, TMove* pMoves, int nMoves, int nIndex);

/// Serves a request for a report from a node of the line: the moves of the node at that depth.
void ReportMoves(const TChessboard& board, const TEngineCommand& command);

/// Shows the list of a node to those who ask for a report, as long as the node lives.
class TShownList
{
public:
    TShownList(TThreadContext& context, std::uint16_t nDepth) : m_pMoves(context.m_apMoves[nDepth])
    {
    }
    ~TShownList() { m_pMoves = nullptr; }
    TShownList(const TShownList&) = delete;
    TShownList& operator=(const TShownList&) = delete;

private:
    const TMove*& m_pMoves;
};

} // namespace corvina

#endif
