// Message boxes in a patched module: text and caption go through the
// dictionary by their plain keys, in buffers of the call's own.
#include <cstdint>
#include <cstring>

#include "kticore/translation/Interception.h"
#include "kticore/translation/Translation.h"
#include "translation/Lookup.h"
#include "translation/intercept/Interceptors.h"

namespace kt::intercept {
namespace {

constexpr unsigned kMessageCapacity = 1024;
using MessageBuffer = char[kMessageCapacity];

// What the system shows for a message box without a caption.
constexpr char kDefaultCaption[] = "Error";
constexpr char kNoText[] = "";

const char* OrDefault(const char* text, const char* fallback) { return text != nullptr ? text : fallback; }

// `text` translated in `buffer`; a text too long for the buffer, or one the
// dictionary could not be asked for, is shown as it stands rather than cut.
const char* Translated(const char* text, MessageBuffer& buffer) {
    const std::size_t length = std::strlen(text);
    if (length >= kMessageCapacity)
        return text;
    std::memcpy(buffer, text, length + 1);
    return OrUntranslated(
        [&] {
            Supp_TranslateBufferA(buffer, kMessageCapacity);
            return static_cast<const char*>(buffer);
        },
        [&] { return text; });
}

// A text field of MSGBOXPARAMSA: a string, or the number of a string of the
// box's module.
const char* TranslatedField(HINSTANCE module, LPCSTR field, const char* fallback, MessageBuffer& buffer) {
    if (field == nullptr || !IS_INTRESOURCE(field))
        return Translated(OrDefault(field, fallback), buffer);
    if (KT_REAL(LoadStringA)(module, LOWORD(reinterpret_cast<std::uintptr_t>(field)), buffer, kMessageCapacity) == 0)
        buffer[0] = 0;
    OrUntranslated([&] { Supp_TranslateBufferA(buffer, kMessageCapacity); }, [] {});
    return buffer;
}

}  // namespace

int WINAPI MessageBoxA(HWND window, LPCSTR text, LPCSTR caption, UINT type) {
    if (!Supp_IsTranslationEnable())
        return KT_REAL(MessageBoxA)(window, text, caption, type);
    MessageBuffer textBuffer, captionBuffer;
    return KT_REAL(MessageBoxA)(window, Translated(OrDefault(text, kNoText), textBuffer),
                                Translated(OrDefault(caption, kDefaultCaption), captionBuffer), type);
}

int WINAPI MessageBoxExA(HWND window, LPCSTR text, LPCSTR caption, UINT type, WORD language) {
    if (!Supp_IsTranslationEnable())
        return KT_REAL(MessageBoxExA)(window, text, caption, type, language);
    MessageBuffer textBuffer, captionBuffer;
    return KT_REAL(MessageBoxExA)(window, Translated(OrDefault(text, kNoText), textBuffer),
                                  Translated(OrDefault(caption, kDefaultCaption), captionBuffer), type, language);
}

// The caller's parameters stay as they were: the box gets a copy that points
// at the translations.
int WINAPI MessageBoxIndirectA(const MSGBOXPARAMSA* params) {
    if (!Supp_IsTranslationEnable() || params == nullptr)
        return KT_REAL(MessageBoxIndirectA)(params);
    MessageBuffer textBuffer, captionBuffer;
    MSGBOXPARAMSA translated = *params;
    translated.lpszText = TranslatedField(params->hInstance, params->lpszText, kNoText, textBuffer);
    translated.lpszCaption = TranslatedField(params->hInstance, params->lpszCaption, kDefaultCaption, captionBuffer);
    return KT_REAL(MessageBoxIndirectA)(&translated);
}

}  // namespace kt::intercept

// By the library's own imports, which the library patched in itself at load:
// the narrow form is translated.
int MessageBoxInternalA(void* params, int wide) {
    if (wide != 0)
        return MessageBoxIndirectW(static_cast<const MSGBOXPARAMSW*>(params));
    return MessageBoxIndirectA(static_cast<const MSGBOXPARAMSA*>(params));
}
