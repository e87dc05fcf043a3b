#ifndef CORVINA_APP_OPTIONS_H
#define CORVINA_APP_OPTIONS_H

#include "search/solve.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

/// The settings of the program, as they stand in the section "chess" of its file of options.

namespace corvina
{

/// The options with their defaults.
struct TOptions
{
    std::int32_t m_nLanguageId = 1; ///< an ELanguage
    bool m_bQuickMode = true;       ///< false: safe mode
    bool m_bWarningOnLichessDataRepetition = false;
    std::int16_t m_shSchedulerLevels = 6; ///< 0: off; the file has this value minus 1
    bool m_bCheckTempRegCoherency = true;
    bool m_bCustomScheduler = true;
    bool m_bSchedulerThreadPool = true;
    std::int16_t m_shObserverLevels = 0;
    std::int16_t m_shLichessLevels = 1; ///< 0: off, -1: off even in the view of the board
    std::uint8_t m_nWarnAboutSecondInstanceOfProgram = 2; ///< 0: no, 1: status bar, 2: box
    bool m_bPromptHeuristics = false;
    std::uint8_t m_nMaxMemRatioForTempReg = 20; ///< percent of the physical memory
    bool m_bClearRegisterOnStartSolving = false;
    std::uint8_t m_nMaxMemRatioForPrecalculatedData = 20; ///< percent of the physical memory
    bool m_bLetAnalyzeTheSameMoveInTwoThreads = true;
    bool m_bCommentCompatibilityMode = false;
    bool m_bShowMainVariant = true;
    std::uint8_t m_nUseMainVariantAsSortIndications = 0; ///< 0: no, 1: yes, 2: other variants too
    bool m_bLogMoves = false;
    bool m_bRegisterInfoLog = false;
    bool m_bTryRelaxSpecialHeuristicsLog = false;
    std::uint8_t m_nMinimizeToTray = 2; ///< 0: no, 1: yes, 2: with the Ctrl key
    std::uint8_t m_nAskForGlobalRegisterRecompression = 0;
    std::uint8_t m_nUseDataPackedForRandomAccess = 2;
    bool m_bGlobalRegisterForceDiskAccess = true;
    std::wstring m_strPrecalcPath; ///< second folder of precalculated data
    bool m_bAskIfSaveAfterDecompressAllToMem = false;
    std::uint8_t m_nMultithreadingLevels = 1;
    bool m_bLogToFileTmpRegLoad = false;
    bool m_bCustomizedVersion = false;
    bool m_bEnableManualEngineControl = false;
    bool m_bScalingWarningDismissed = false;
    std::uint8_t m_nUsePredefinedIndications = 0; ///< 0: no, 1: yes, 2: yes, and mark the problems
    std::int32_t m_nAutoSaveMinutes = 240;        ///< 0: off
    std::int32_t m_nAutoSaveMB = 256;             ///< 0: off
    std::int32_t m_nLastProcessedMsgId = 0;

    bool operator==(const TOptions&) const = default;
};

/// A key of the file.
struct TOptionKey
{
    using TMember =
        std::variant<bool TOptions::*, std::uint8_t TOptions::*, std::int16_t TOptions::*,
                     std::int32_t TOptions::*, std::wstring TOptions::*>;

    const char* m_pName;
    TMember m_member;
    bool m_bInDialog;         ///< written by WriteOptions
    std::int32_t m_nMin = 0;  ///< what a user may choose
    std::int32_t m_nMax = 1;  ///< for a text its longest length
    std::int32_t m_nBias = 0; ///< the option minus what the file has
};

/// All keys, in the order in which they are read and shown.
std::span<const TOptionKey> GetOptionKeys();

/// Null for a name that is no key; names are equal whatever their case.
const TOptionKey* FindOptionKey(const std::string& strName);

/// The value as the file has it.
std::string OptionToText(const TOptions& options, const TOptionKey& key);

/// The options of a file; what it doesn't say has its default, and so has everything without a
/// readable file. Warnings for the user are appended to vecWarnings.
TOptions ReadOptions(const std::filesystem::path& path, std::vector<std::string>& vecWarnings);

/// Writes the keys of the dialog and those in vecFurtherKeys; everything else in the file stays as
/// it is. False when the file can't be written, which is no reason to disturb the user of a window.
bool WriteOptions(const std::filesystem::path& path, const TOptions& options,
                  const std::vector<const TOptionKey*>& vecFurtherKeys = {});

/// The program's file of options.
std::filesystem::path GetOptionsPath();

/// What the user has entered: the fields that hold text, and everything else as options.
struct TOptionFields
{
    /// As the fields show these options and this number of threads.
    TOptionFields(const TOptions& options, unsigned nThreads);

    TOptions m_options; ///< check boxes and lists
    std::string m_strMaxMemRatioForPrecalculatedData;
    std::string m_strMaxMemRatioForTempReg;
    std::string m_strSchedulerLevels; ///< 0 for off
    std::string m_strLichessLevels;
    std::string m_strThreads; ///< "n", or "n^L" with L levels of multithreading
    std::string m_strAutoSaveMinutes;
    std::string m_strAutoSaveMB;
};

/// What becomes of the fields.
struct TOptionsOfFields
{
    std::optional<TOptions> m_options; ///< none when a field is refused
    unsigned m_nThreads = 0;           ///< for the session; the file doesn't have it
    std::vector<std::string>
        m_vecTexts; ///< for the user, in order; the reason of a refusal is last
};

/// Validates the fields against the options and the number of threads in force.
TOptionsOfFields ValidateOptions(const TOptions& current, unsigned nThreads,
                                 const TOptionFields& fields);

/// What the options allow to data in memory.
struct TMemoryLimits
{
    std::uint64_t m_nTemporaryMB;        ///< for the temporary register of a problem
    std::uint64_t m_nDefaultTemporaryMB; ///< the same for a new problem
    std::uint64_t m_nPrecalculatedBytes;
};

/// For a machine with so much physical memory.
TMemoryLimits ComputeMemoryLimits(const TOptions& options, std::uint64_t nTotalBytes);

/// Processor cores of the machine, or its logical processors. At least 1.
unsigned GetNumberOfCores(bool bLogical);

/// Brings the options to a request and returns what they say of its runs.
TRunSettings ApplyOptions(const TOptions& options, TSolveRequest& request);

} // namespace corvina

#endif
