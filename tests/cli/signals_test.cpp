#include "support/slowbuild.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

/// The command line under the signals of a terminal.

namespace
{

using namespace std::chrono_literals;
using TClock = std::chrono::steady_clock;

/// A solve that goes on until it is ended.
class TSolve
{
public:
    explicit TSolve(const char* pSeconds)
    {
        m_nProcess = fork();
        if (m_nProcess != 0)
            return;
        const int nFile = open(m_folder.File("out").c_str(), O_CREAT | O_WRONLY, 0600);
        dup2(nFile, STDOUT_FILENO);
        dup2(nFile, STDERR_FILENO);
        execl(CORVINA_CLI, CORVINA_CLI, "solve", "--fen",
              "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", "--mate", "12", "--threads", "2",
              "--time", pSeconds, nullptr);
        _exit(127);
    }
    ~TSolve()
    {
        if (!m_bEnded) {
            kill(m_nProcess, SIGKILL);
            Wait(0);
        }
    }

    void Send(int nSignal) { kill(m_nProcess, nSignal); }

    /// The state of the process once it has changed.
    int Wait(int nFlags)
    {
        int nStatus = 0;
        EXPECT_EQ(waitpid(m_nProcess, &nStatus, nFlags), m_nProcess);
        m_bEnded = WIFEXITED(nStatus) || WIFSIGNALED(nStatus);
        return nStatus;
    }

    std::string Output() { return corvina::BytesOf(m_folder.File("out")); }

    double Seconds()
    {
        const std::string strOutput = Output();
        const auto place = strOutput.find("found so far, ");
        return place == std::string::npos ? -1 : std::atof(strOutput.c_str() + place + 14);
    }

private:
    corvina::TTemporaryFolder m_folder;
    pid_t m_nProcess;
    bool m_bEnded = false;
};

TEST(Signals, ASuspensionIsNoTimeOfTheRun)
{
    TSolve solve("1.5");
    const auto tStart = TClock::now();
    std::this_thread::sleep_for(500ms);
    solve.Send(SIGTSTP);
    ASSERT_TRUE(WIFSTOPPED(solve.Wait(WUNTRACED)));
    std::this_thread::sleep_for(2000ms);
    solve.Send(SIGCONT);
    std::this_thread::sleep_for(400ms);
    solve.Send(SIGUSR1);
    const int nStatus = solve.Wait(0);
    EXPECT_EQ(WEXITSTATUS(nStatus), 3);
    EXPECT_GT(TClock::now() - tStart, 3400ms);
    EXPECT_NEAR(solve.Seconds(), 1.5, 0.3) << solve.Output();
    const std::string strOutput = solve.Output();
    EXPECT_NE(strOutput.find("Solving ("), std::string::npos) << strOutput;
    EXPECT_NE(strOutput.find("* Threads = 2"), std::string::npos) << strOutput;
}

TEST(Signals, AnInterruptionEndsARunEvenAfterASuspension)
{
    for (const bool bSuspended : {false, true}) {
        TSolve solve("60");
        std::this_thread::sleep_for(400ms);
        if (bSuspended) {
            solve.Send(SIGTSTP);
            ASSERT_TRUE(WIFSTOPPED(solve.Wait(WUNTRACED)));
            solve.Send(SIGINT);
            solve.Send(SIGCONT);
        }
        else {
            solve.Send(SIGINT);
        }
        const auto tStop = TClock::now();
        EXPECT_EQ(WEXITSTATUS(solve.Wait(0)), 3);
        EXPECT_LT(TClock::now() - tStop, 400ms * corvina::SLOWER) << "the process included";
        EXPECT_GE(solve.Seconds(), 0) << solve.Output();
    }
}

} // namespace
