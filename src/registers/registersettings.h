#ifndef CORVINA_REGISTERS_REGISTERSETTINGS_H
#define CORVINA_REGISTERS_REGISTERSETTINGS_H

#include "platform/language.h"

namespace corvina
{

/// What the user's options say about the registers. Set before a run.
struct TRegisterSettings
{
    bool m_bRegisterInfoLog = false;      ///< write "registerInfo.log"
    bool m_bCheckTempRegCoherency = true; ///< report certain results that contradict each other
    ELanguage m_language = ELanguage::English;
    void (*m_pPumpMessages)() = nullptr; ///< keeps a window alive in long loops; null: no window
};

inline TRegisterSettings g_registerSettings;

} // namespace corvina

#endif
