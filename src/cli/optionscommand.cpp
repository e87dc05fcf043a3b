#include "app/options.h"
#include "cli/commands.h"
#include "platform/encoding.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cstdio>

namespace corvina
{
namespace
{

/// What the user sets, on its way through the fields of the dialog.
struct TChanges
{
    TOptionFields m_fields;
    std::vector<const TOptionKey*> m_vecKeys;
};

/// The fields that take any text and judge it themselves.
std::string* FieldOf(TOptionFields& fields, const std::string& strKey)
{
    struct TField
    {
        const char* m_pKey;
        std::string TOptionFields::*m_member;
    };
    constexpr TField aFields[] = {
        {"MaxMemRatioForPrecalculatedData", &TOptionFields::m_strMaxMemRatioForPrecalculatedData},
        {"MaxMemRatioForTempReg", &TOptionFields::m_strMaxMemRatioForTempReg},
        {"LichessLevels", &TOptionFields::m_strLichessLevels},
        {"AutoSaveMinutes", &TOptionFields::m_strAutoSaveMinutes},
        {"AutoSaveMB", &TOptionFields::m_strAutoSaveMB},
    };
    for (const TField& field : aFields) {
        if (strKey == field.m_pKey)
            return &(fields.*field.m_member);
    }
    return nullptr;
}

std::optional<std::int32_t> ReadNumber(const std::string& strText)
{
    std::int32_t nValue = 0;
    const char* pEnd = strText.data() + strText.size();
    const auto [pRead, error] = std::from_chars(strText.data(), pEnd, nValue);
    return error == std::errc() && pRead == pEnd ? std::optional(nValue) : std::nullopt;
}

/// Puts a value among the options, for what the dialog has a check box, a list or nothing for.
void SetValue(TOptions& options, const TOptionKey& key, const std::string& strValue)
{
    if (const auto pText = std::get_if<std::wstring TOptions::*>(&key.m_member)) {
        const std::wstring strWide = WideFromUtf8(strValue);
        if (strWide.size() > static_cast<std::size_t>(key.m_nMax) ||
            strValue.find_first_of("\r\n") != std::string::npos)
            throw ChessException(std::string(key.m_pName) + ": a line of at most " +
                                 std::to_string(key.m_nMax) + " characters is expected.");
        options.*(*pText) = strWide;
        return;
    }
    const auto nValue = ReadNumber(strValue);
    if (!nValue || *nValue < key.m_nMin || *nValue > key.m_nMax)
        throw ChessException(std::string(key.m_pName) + ": a number from " +
                             std::to_string(key.m_nMin) + " to " + std::to_string(key.m_nMax) +
                             " is expected.");
    std::visit(
        [&](auto member) {
            auto& value = options.*member;
            using TValue = std::remove_reference_t<decltype(value)>;
            if constexpr (!std::is_same_v<TValue, std::wstring>)
                value = static_cast<TValue>(*nValue + key.m_nBias);
        },
        key.m_member);
}

/// Takes a setting "KEY=VALUE" over. Throws ChessException.
void Change(TChanges& changes, const std::string& strSetting, unsigned nThreads)
{
    const auto equals = strSetting.find('=');
    if (equals == std::string::npos)
        throw ChessException("--set needs KEY=VALUE: " + strSetting);
    const TOptionKey* pKey = FindOptionKey(strSetting.substr(0, equals));
    if (!pKey)
        throw ChessException("There is no option " + strSetting.substr(0, equals) + ".");
    const std::string strValue = strSetting.substr(equals + 1);
    const std::string strKey = pKey->m_pName;
    changes.m_vecKeys.push_back(pKey);
    if (std::string* pField = FieldOf(changes.m_fields, strKey)) {
        *pField = strValue;
    }
    else if (strKey == "SchedulerLevels") {
        // The field shows the levels that are used, the file has one less.
        const auto nLevels = ReadNumber(strValue);
        changes.m_fields.m_strSchedulerLevels =
            nLevels ? std::to_string(std::int64_t{*nLevels} + pKey->m_nBias) : strValue;
    }
    else if (strKey == "MultithreadingLevels") {
        changes.m_fields.m_strThreads = std::to_string(nThreads) + "^" + strValue;
    }
    else {
        SetValue(changes.m_fields.m_options, *pKey, strValue);
    }
}

int ChangeOptions(TOptions& options, const std::vector<std::string>& vecSettings)
{
    const unsigned nThreads = GetNumberOfCores(false);
    TChanges changes{TOptionFields(options, nThreads), {}};
    for (const std::string& strSetting : vecSettings)
        Change(changes, strSetting, nThreads);
    const TOptionsOfFields result = ValidateOptions(options, nThreads, changes.m_fields);
    for (const std::string& strText : result.m_vecTexts)
        std::fprintf(stderr, "%s\n", strText.c_str());
    if (!result.m_options)
        return EXIT_BAD_INPUT;
    options = *result.m_options;
    if (!WriteOptions(GetOptionsPath(), options, changes.m_vecKeys))
        throw ChessException("Cannot write " + GetOptionsPath().string());
    return 0;
}

int RunOptions(const std::vector<std::string>& vecSettings)
{
    std::vector<std::string> vecWarnings;
    TOptions options = ReadOptions(GetOptionsPath(), vecWarnings);
    for (const std::string& strText : vecWarnings)
        std::fprintf(stderr, "%s\n", strText.c_str());
    if (!vecSettings.empty()) {
        if (const int nExitCode = ChangeOptions(options, vecSettings))
            return nExitCode;
    }
    for (const TOptionKey& key : GetOptionKeys())
        std::printf("%s=%s\n", key.m_pName, OptionToText(options, key).c_str());
    return 0;
}

} // namespace

void AddOptionsCommand(CLI::App& app, int& nExitCode)
{
    auto pSettings = std::make_shared<std::vector<std::string>>();
    CLI::App* pCommand = app.add_subcommand(
        "options", "Show the options of the program (options.ini), or change them.");
    pCommand->add_option("--set", *pSettings, "KEY=VALUE; may be given more than once")
        ->allow_extra_args(false);
    pCommand->callback([pSettings, &nExitCode] { nExitCode = RunOptions(*pSettings); });
}

} // namespace corvina
