#include "app/options.h"

#include "heuristics/relaxlog.h"
#include "heuristics/setreader.h"
#include "platform/appfolder.h"
#include "platform/encoding.h"
#include "platform/machine.h"
#include "platform/profile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <thread>

namespace corvina
{
namespace
{

constexpr const char* SECTION = "chess";
constexpr std::size_t MAX_PATH_LENGTH = 255;
constexpr std::int32_t MAX_INT = std::numeric_limits<std::int32_t>::max();
constexpr bool IN_DIALOG = true;
constexpr bool BY_HAND = false;

constexpr TOptionKey KEYS[] = {
    {"LanguageId", &TOptions::m_nLanguageId, BY_HAND, 0, 2},
    {"QuickMode", &TOptions::m_bQuickMode, IN_DIALOG},
    {"WarningOnLichessDataRepetition", &TOptions::m_bWarningOnLichessDataRepetition, BY_HAND},
    {"SchedulerLevels", &TOptions::m_shSchedulerLevels, IN_DIALOG, -1, 8, 1},
    {"CheckTempRegCoherency", &TOptions::m_bCheckTempRegCoherency, BY_HAND},
    {"CustomScheduler", &TOptions::m_bCustomScheduler, IN_DIALOG},
    {"SchedulerThreadPool", &TOptions::m_bSchedulerThreadPool, IN_DIALOG},
    {"ObserverLevels", &TOptions::m_shObserverLevels, IN_DIALOG, 0, 32767},
    {"LichessLevels", &TOptions::m_shLichessLevels, IN_DIALOG, -1, 255},
    {"WarnAboutSecondInstanceOfProgram", &TOptions::m_nWarnAboutSecondInstanceOfProgram, IN_DIALOG,
     0, 2},
    {"PromptHeuristics", &TOptions::m_bPromptHeuristics, IN_DIALOG},
    {"MaxMemRatioForTempReg", &TOptions::m_nMaxMemRatioForTempReg, IN_DIALOG, 0, 100},
    {"ClearRegisterOnStartSolving", &TOptions::m_bClearRegisterOnStartSolving, IN_DIALOG},
    {"MaxMemRatioForPrecalculatedData", &TOptions::m_nMaxMemRatioForPrecalculatedData, IN_DIALOG, 0,
     100},
    {"LetAnalyzeTheSameMoveInTwoThreads", &TOptions::m_bLetAnalyzeTheSameMoveInTwoThreads,
     IN_DIALOG},
    {"CommentCompatibilityMode", &TOptions::m_bCommentCompatibilityMode, IN_DIALOG},
    {"ShowMainVariant", &TOptions::m_bShowMainVariant, IN_DIALOG},
    {"UseMainVariantAsSortIndications", &TOptions::m_nUseMainVariantAsSortIndications, IN_DIALOG, 0,
     2},
    {"LogMoves", &TOptions::m_bLogMoves, IN_DIALOG},
    {"RegisterInfoLog", &TOptions::m_bRegisterInfoLog, IN_DIALOG},
    {"TryRelaxSpecialHeuristicsLog", &TOptions::m_bTryRelaxSpecialHeuristicsLog, IN_DIALOG},
    {"MinimizeToTray", &TOptions::m_nMinimizeToTray, IN_DIALOG, 0, 2},
    {"AskForGlobalRegisterRecompression", &TOptions::m_nAskForGlobalRegisterRecompression, BY_HAND,
     0, 255},
    {"UseDataPackedForRandomAccess", &TOptions::m_nUseDataPackedForRandomAccess, BY_HAND, 0, 255},
    {"GlobalRegisterForceDiskAccess", &TOptions::m_bGlobalRegisterForceDiskAccess, IN_DIALOG},
    {"PrecalcPath", &TOptions::m_strPrecalcPath, BY_HAND, 0, MAX_PATH_LENGTH},
    {"AskIfSaveAfterDecompressAllToMem", &TOptions::m_bAskIfSaveAfterDecompressAllToMem, BY_HAND},
    {"MultithreadingLevels", &TOptions::m_nMultithreadingLevels, IN_DIALOG, 1, 64},
    {"LogToFileTmpRegLoad", &TOptions::m_bLogToFileTmpRegLoad, BY_HAND},
    {"CustomizedVersion", &TOptions::m_bCustomizedVersion, BY_HAND},
    {"EnableManualEngineControl", &TOptions::m_bEnableManualEngineControl, IN_DIALOG},
    {"ScalingWarningDismissed", &TOptions::m_bScalingWarningDismissed, BY_HAND},
    {"UsePredefinedIndications", &TOptions::m_nUsePredefinedIndications, IN_DIALOG, 0, 2},
    {"AutoSaveMinutes", &TOptions::m_nAutoSaveMinutes, IN_DIALOG, 0, MAX_INT},
    {"AutoSaveMB", &TOptions::m_nAutoSaveMB, IN_DIALOG, 0, MAX_INT},
    {"LastProcessedMsgId", &TOptions::m_nLastProcessedMsgId, BY_HAND, 0, MAX_INT},
};

template <typename T>
constexpr bool IS_TEXT = std::is_same_v<T, std::wstring>;

void ReadKey(const TProfile& profile, const TOptionKey& key, TOptions& options)
{
    std::visit(
        [&](auto member) {
            auto& value = options.*member;
            using TValue = std::remove_reference_t<decltype(value)>;
            if constexpr (IS_TEXT<TValue>)
                value = WideFromUtf8(profile.GetText(SECTION, key.m_pName).value_or(""))
                            .substr(0, MAX_PATH_LENGTH);
            else
                value = static_cast<TValue>(
                    profile.GetInt(SECTION, key.m_pName, value - key.m_nBias) + key.m_nBias);
        },
        key.m_member);
}

/// A whole decimal number.
std::optional<std::int32_t> ReadNumber(const std::string& strText)
{
    const auto first = strText.find_first_not_of(' ');
    const auto last = strText.find_last_not_of(' ');
    if (first == std::string::npos)
        return std::nullopt;
    std::int32_t nValue = 0;
    const char* pEnd = strText.data() + last + 1;
    const auto [pRead, error] = std::from_chars(strText.data() + first, pEnd, nValue);
    return error == std::errc() && pRead == pEnd ? std::optional(nValue) : std::nullopt;
}

std::optional<std::int32_t> ReadNumber(const std::string& strText, std::int32_t nMin,
                                       std::int32_t nMax)
{
    const auto nValue = ReadNumber(strText);
    return nValue && *nValue >= nMin && *nValue <= nMax ? nValue : std::nullopt;
}

/// The fields on their way to options. Each step takes its fields over, adds texts, and returns
/// false to refuse.
class CFieldReader
{
public:
    CFieldReader(const TOptions& current, unsigned nThreads, const TOptionFields& fields)
        : m_current(current), m_nCurrentThreads(nThreads), m_fields(fields),
          m_options(fields.m_options)
    {
        m_result.m_nThreads = nThreads;
    }

    TOptionsOfFields Read()
    {
        if (ReadRatios() && ReadLevels() && ReadThreads()) {
            AddNotes();
            if (ReadAutoSave())
                m_result.m_options = m_options;
        }
        if (!m_result.m_options)
            m_result.m_nThreads = m_nCurrentThreads;
        return m_result;
    }

private:
    void Tell(const std::string& strText) { m_result.m_vecTexts.push_back(strText); }

    /// Takes a number over, or refuses it with a text.
    template <typename T>
    bool Take(const std::string& strField, std::int32_t nMin, std::int32_t nMax, T& target,
              const std::string& strRefusal)
    {
        const auto nValue = ReadNumber(strField, nMin, nMax);
        if (nValue)
            target = static_cast<T>(*nValue);
        else
            Tell(strRefusal);
        return nValue.has_value();
    }

    bool ReadRatios()
    {
        return Take(m_fields.m_strMaxMemRatioForPrecalculatedData, 0, 100,
                    m_options.m_nMaxMemRatioForPrecalculatedData,
                    "Improper value in field with memory ratio for precalculated data.") &&
               Take(m_fields.m_strMaxMemRatioForTempReg, 0, 100, m_options.m_nMaxMemRatioForTempReg,
                    "Improper value in field with memory ratio for temporary data.");
    }

    bool ReadLevels()
    {
        return Take(m_fields.m_strSchedulerLevels, 0, 9, m_options.m_shSchedulerLevels,
                    "Invalid number of scheduler levels (min=0, max=9)") &&
               Take(m_fields.m_strLichessLevels, -1, 255, m_options.m_shLichessLevels,
                    std::string("Invalid number of levels of analysis with solutions dowanloaded "
                                "from ") +
                        TABLEBASE_HOST + " (min=-1, max =255)");
    }

    bool ReadThreads()
    {
        const std::string& strField = m_fields.m_strThreads;
        const auto caret = strField.find('^');
        const auto nThreads = ReadNumber(strField.substr(0, caret), 1, MAX_THREADS);
        const auto nLevels = caret == std::string::npos ? std::optional<std::int32_t>(1)
                                                        : ReadNumber(strField.substr(caret + 1));
        const std::int32_t nAdjusted = std::clamp(nLevels.value_or(1), 1, MAX_LEVELS);
        if (!nThreads || nLevels != nAdjusted)
            Tell("Improper value in multithreading levels option: value truncated/adjusted");
        m_result.m_nThreads = nThreads ? static_cast<unsigned>(*nThreads) : m_nCurrentThreads;
        m_options.m_nMultithreadingLevels = static_cast<std::uint8_t>(nAdjusted);
        if (HasTooManyThreads(m_result.m_nThreads, nAdjusted)) {
            Tell("Too many threads and/or multithreading levels.");
            return false;
        }
        if (m_result.m_nThreads != m_nCurrentThreads)
            Tell("Note that thread settings will not be saved");
        return true;
    }

    /// A thread spawns as many threads as there are, on each level: the sum over the levels counts.
    static bool HasTooManyThreads(std::uint64_t nThreads, int nLevels)
    {
        std::uint64_t nTotal = 0, nOfLevel = 1;
        for (int i = 0; i < nLevels && nTotal < TOO_MANY_THREADS; ++i) {
            nOfLevel *= nThreads;
            nTotal += nOfLevel;
        }
        return nTotal >= TOO_MANY_THREADS;
    }

    void AddNotes()
    {
        if (m_options.m_bEnableManualEngineControl && !m_current.m_bEnableManualEngineControl)
            Tell("Note that manual engine control (reachable from context menu in progress info "
                 "area) should be used very carefully, otherwise can result in skipping solutions "
                 "or false positives.");
        if (m_options.m_bLogMoves && m_options.m_shSchedulerLevels > 0)
            Tell("Full analysis logging is on. It is highly recommended to switch off scheduler "
                 "for readability/linearity of log records.");
        if (m_options.m_shSchedulerLevels == 0 && m_options.m_bCustomScheduler) {
            Tell("Note: Due to SchedulerLevels=0, Custom scheduler will be off");
            m_options.m_bCustomScheduler = false;
        }
    }

    bool ReadAutoSave()
    {
        const auto orZero = [](const std::string& strField) {
            return strField.empty() ? std::string("0") : strField;
        };
        const char* pRefusal = "Invalid settings for auto save";
        return Take(orZero(m_fields.m_strAutoSaveMinutes), 0, MAX_INT, m_options.m_nAutoSaveMinutes,
                    pRefusal) &&
               Take(orZero(m_fields.m_strAutoSaveMB), 0, MAX_INT, m_options.m_nAutoSaveMB,
                    pRefusal);
    }

    static constexpr const char* TABLEBASE_HOST = "tablebase.lichess.ovh";
    static constexpr int MAX_THREADS = 255;
    static constexpr int MAX_LEVELS = 64;
    static constexpr std::uint64_t TOO_MANY_THREADS = 32767;

    const TOptions& m_current;
    const unsigned m_nCurrentThreads;
    const TOptionFields& m_fields;
    TOptions m_options;
    TOptionsOfFields m_result;
};

} // namespace

std::span<const TOptionKey> GetOptionKeys()
{
    return KEYS;
}

const TOptionKey* FindOptionKey(const std::string& strName)
{
    const auto lower = [](std::string strText) {
        std::transform(strText.begin(), strText.end(), strText.begin(), [](char c) {
            return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        });
        return strText;
    };
    const auto pKey = std::find_if(std::begin(KEYS), std::end(KEYS), [&](const TOptionKey& key) {
        return lower(key.m_pName) == lower(strName);
    });
    return pKey == std::end(KEYS) ? nullptr : &*pKey;
}

std::string OptionToText(const TOptions& options, const TOptionKey& key)
{
    return std::visit(
        [&](auto member) {
            const auto& value = options.*member;
            if constexpr (IS_TEXT<std::remove_cvref_t<decltype(value)>>)
                return Utf8FromWide(value);
            else
                return std::to_string(value - key.m_nBias);
        },
        key.m_member);
}

TOptions ReadOptions(const std::filesystem::path& path, std::vector<std::string>& vecWarnings)
{
    const TProfile profile(path);
    TOptions options;
    for (const TOptionKey& key : KEYS)
        ReadKey(profile, key, options);
    auto& nSorts = options.m_nUseMainVariantAsSortIndications;
    nSorts = std::min<std::uint8_t>(nSorts, 2);
    if (options.m_nAskForGlobalRegisterRecompression > options.m_nUseDataPackedForRandomAccess) {
        vecWarnings.push_back("Value of parameter AskForGlobalRegisterRecompression should not be "
                              "greater than UseDataPackedForRandomAccess.");
        options.m_nAskForGlobalRegisterRecompression = options.m_nUseDataPackedForRandomAccess;
    }
    if (options.m_bLogMoves)
        vecWarnings.push_back(
            "Program has been opened with the option to write log of full analysis - this option "
            "is not recommended (it makes solving last much longer and produces large log files)");
    return options;
}

bool WriteOptions(const std::filesystem::path& path, const TOptions& options,
                  const std::vector<const TOptionKey*>& vecFurtherKeys)
{
    TProfile profile(path);
    for (const TOptionKey& key : KEYS) {
        const bool bAsked =
            std::find(vecFurtherKeys.begin(), vecFurtherKeys.end(), &key) != vecFurtherKeys.end();
        if (key.m_bInDialog || bAsked)
            profile.SetText(SECTION, key.m_pName, OptionToText(options, key));
    }
    return profile.Write();
}

std::filesystem::path GetOptionsPath()
{
    return GetAppFolder() / "options.ini";
}

TOptionFields::TOptionFields(const TOptions& options, unsigned nThreads)
    : m_options(options), m_strMaxMemRatioForPrecalculatedData(
                              std::to_string(options.m_nMaxMemRatioForPrecalculatedData)),
      m_strMaxMemRatioForTempReg(std::to_string(options.m_nMaxMemRatioForTempReg)),
      m_strSchedulerLevels(std::to_string(options.m_shSchedulerLevels)),
      m_strLichessLevels(std::to_string(options.m_shLichessLevels)),
      m_strThreads(std::to_string(nThreads)),
      m_strAutoSaveMinutes(std::to_string(options.m_nAutoSaveMinutes)),
      m_strAutoSaveMB(std::to_string(options.m_nAutoSaveMB))
{
    if (options.m_nMultithreadingLevels != 1)
        m_strThreads += "^" + std::to_string(options.m_nMultithreadingLevels);
}

TOptionsOfFields ValidateOptions(const TOptions& current, unsigned nThreads,
                                 const TOptionFields& fields)
{
    return CFieldReader(current, nThreads, fields).Read();
}

TMemoryLimits ComputeMemoryLimits(const TOptions& options, std::uint64_t nTotalBytes)
{
    constexpr std::uint64_t DEFAULT_RATIO = 20;
    const std::uint64_t nTotalMB = nTotalBytes >> 20;
    return {nTotalMB * options.m_nMaxMemRatioForTempReg / 100, nTotalMB * DEFAULT_RATIO / 100,
            options.m_nMaxMemRatioForPrecalculatedData * nTotalBytes / 100};
}

unsigned GetNumberOfCores(bool bLogical)
{
    return bLogical ? std::max(1U, std::thread::hardware_concurrency()) : GetProcessorCores();
}

TRunSettings ApplyOptions(const TOptions& options, TSolveRequest& request)
{
    const std::uint64_t nTotalBytes = GetTotalPhysicalMemory();
    // A machine that doesn't tell its memory leaves the register's own limit.
    if (nTotalBytes != 0)
        request.m_TemporaryRegister.SetMemoryLimitMB(
            ComputeMemoryLimits(options, nTotalBytes).m_nTemporaryMB);
    SetRelaxationLog(options.m_bTryRelaxSpecialHeuristicsLog);
    request.m_bClearRegister = options.m_bClearRegisterOnStartSolving;
    request.m_bManualControl = options.m_bEnableManualEngineControl;
    request.m_bShareMoves = options.m_bLetAnalyzeTheSameMoveInTwoThreads;
    ApplyHeuristicOptions(request.m_mapHeuristicOptions, request.m_heuristicSet,
                          request.m_pChessboard.get());
    TRunSettings settings;
    settings.m_bQuickMode = options.m_bQuickMode;
    settings.m_nMultithreadingLevels = options.m_nMultithreadingLevels;
    settings.m_nSchedulerLevels = options.m_shSchedulerLevels;
    settings.m_bCustomScheduler = options.m_bCustomScheduler;
    settings.m_bSchedulerThreadPool = options.m_bSchedulerThreadPool;
    settings.m_nMainVariantUse = options.m_nUseMainVariantAsSortIndications;
    settings.m_bUsePredefinedSettings = options.m_nUsePredefinedIndications != 0;
    return settings;
}

} // namespace corvina
