#include "problems/problemfile.h"
#include "problems/problemwriter.h"
#include "support/randomproblems.h"

#include <gtest/gtest.h>

namespace corvina
{
namespace
{

const TProblemFileSettings g_quiet{.m_pWarnings = nullptr, .m_pProgress = nullptr};

/// What is typed is read, in full; what is written is all of that but for what has no written form,
/// and reads the same again.
TEST(RoundTrip, GeneratedCollections)
{
    for (unsigned nSeed = 0; nSeed < 40; ++nSeed) {
        std::mt19937 random(nSeed);
        TProblemCollection made;
        std::string strTyped = " \tUTF-8\r\n";
        for (int i = 0; i < 25; ++i) {
            auto pProblem = RandomProblem(random, static_cast<std::int32_t>(random() >> 1));
            strTyped += TypedByHand(*pProblem, random);
            // A problem that is moved keeps its records.
            made.Put(std::make_unique<TProblem>(std::move(*pProblem)));
        }
        TProblemCollection typed, written;
        ASSERT_NO_THROW(ReadProblems(strTyped, typed, g_quiet)) << strTyped;
        const std::string strWritten = ProblemsToText(made, true);
        ASSERT_NO_THROW(ReadProblems(strWritten, written, g_quiet)) << strWritten;
        ASSERT_EQ(typed.m_mapProblems.size(), made.m_mapProblems.size()) << nSeed;
        ASSERT_EQ(written.m_mapProblems.size(), made.m_mapProblems.size()) << nSeed;
        for (const auto& [nNumber, pProblem] : made.m_mapProblems) {
            ASSERT_EQ(Describe(*typed.Find(nNumber), true), Describe(*pProblem, true)) << strTyped;
            ASSERT_EQ(Describe(*written.Find(nNumber), false), Describe(*pProblem, false))
                << strWritten;
        }
        ASSERT_EQ(ProblemsToText(typed, true), strWritten);
        ASSERT_EQ(ProblemsToText(written, true), strWritten);
    }
}

/// Texts that a dialog could hand over don't break the file.
TEST(RoundTrip, TextsThatWouldEndEarly)
{
    TProblemCollection made, read;
    auto pProblem = std::make_unique<TProblem>();
    pProblem->m_nProblemNumber = 1;
    std::mt19937 random(1);
    *pProblem->m_pChessboard = *RandomProblem(random, 1)->m_pChessboard;
    pProblem->m_strDescription = L"a\n}\n2 #3 {";
    pProblem->m_setTags.insert(L"b\r\nc");
    TVariantMove move;
    move.m_strText = "Qa1-a8";
    move.m_strComment = L"d] e\nf";
    EXPECT_TRUE(pProblem->AddVariant(L"g} h", {move}));
    made.Put(std::move(pProblem));
    ReadProblems(ProblemsToText(made, true), read, g_quiet);
    ASSERT_EQ(read.m_mapProblems.size(), 1u);
    const TProblem& problem = *read.Find(1);
    EXPECT_EQ(problem.m_strDescription, L"a } 2 #3 {");
    EXPECT_EQ(*problem.m_setTags.begin(), L"b  c");
    EXPECT_EQ(problem.m_mapVariants.at(L"g) h").m_vecMoves.at(0).m_strComment, L"d) e f");
}

} // namespace
} // namespace corvina
