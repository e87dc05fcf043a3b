#ifndef CORVINA_PLATFORM_LANGUAGE_H
#define CORVINA_PLATFORM_LANGUAGE_H

namespace corvina
{

/// The language of the user's texts. A text without a form in the language is shown in English.
enum class ELanguage
{
    Polish = 0,
    English = 1,
    Ukrainian = 2
};

} // namespace corvina

#endif
