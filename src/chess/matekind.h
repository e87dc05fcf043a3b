#ifndef CORVINA_CHESS_MATEKIND_H
#define CORVINA_CHESS_MATEKIND_H

#include "chess/chessboard.h"

namespace corvina
{

enum class EMateKind
{
    None,      ///< Black has a legal move
    Stalemate, ///< Black has none and isn't in check
    Mate,
    ModelMate, ///< pure and economical
    IdealMate  ///< pure, and every man on the board takes part
};

/// Classifies a position with Black to move.
///
/// The field of the king is the squares next to him. A White man guards a square that it attacks
/// once the king is taken off the board, so that a line also guards what lies behind the king.
///
/// A mate is pure when
/// - every square of the field without a Black man is guarded by exactly one White man,
/// - every square of the field with a Black man is guarded by none; the man that pins the Black one
///   on it may be the only guard, if the pin is needed,
/// - a single man gives check; or two, if Black could answer the check of either alone.
///
/// A pin is needed when the pinned man could otherwise capture the only man that gives check or
/// step between.
///
/// A White man takes part when it gives check, guards a square of the field without a Black man, or
/// holds a needed pin. A Black man takes part when it stands in the field or is held by a needed
/// pin. A pure mate is economical, a model mate, when every White queen, rook, bishop and knight
/// takes part, whatever the king and the pawns do. It is an ideal mate when every White man and
/// every Black man takes part.
EMateKind GetMateKind(const TChessboard& board);

} // namespace corvina

#endif
