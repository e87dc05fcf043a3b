#include "chess/boardid.h"
#include "chess/fen.h"
#include "cli/commands.h"
#include "cli/task.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace corvina
{
namespace
{

int RunId(const std::string& strFen)
{
    TChessboard board;
    bool bCastlingDiffers = false;
    bool bEnPassantGiven = false;
    if (!ReadFen(board, strFen, &bCastlingDiffers, &bEnPassantGiven))
        throw ChessException("Improper FEN code");
    board.m_nMoves = board.m_nInitialMoves = 1;
    const TChessboardId id(board.m_board);
    std::printf("id:        %s\n", id.ToAlphanum6().c_str());
    std::printf("file name: %s\n", id.GetIdFileName().c_str());
    std::printf("short FEN: %s\n", WriteFen(board, true).c_str());
    std::printf("FEN:       %s\n", WriteFen(board, false).c_str());
    if (bCastlingDiffers)
        std::printf("note: a king and rook at home may castle, whatever the FEN says\n");
    if (bEnPassantGiven)
        std::printf("note: the first move can't be a capture en passant, whatever the FEN says\n");
    return 0;
}

} // namespace

void AddIdCommand(CLI::App& app, int& nExitCode)
{
    auto pFen = std::make_shared<std::string>();
    CLI::App* pCommand = app.add_subcommand("id", "Print the identifiers of a position.");
    pCommand->add_option("--fen", *pFen, "the position")->required();
    pCommand->callback([pFen, &nExitCode] { nExitCode = RunId(*pFen); });
}

} // namespace corvina
