#ifndef CORVINA_TESTS_SUPPORT_CHESSTEST_H
#define CORVINA_TESTS_SUPPORT_CHESSTEST_H

/// What most tests of chess need: the frame, positions as texts and by chance, the slow rules.

#include "chess/fen.h"
#include "chess/notation.h"
#include "support/data.h"
#include "support/positions.h"
#include "support/slowchess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#endif
