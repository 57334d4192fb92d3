#include "tools/kttool/ModuleTexts.h"

#include <fstream>
#include <iterator>

#include "platform/TextConversion.h"
#include "tools/kttool/MenuTexts.h"
#include "tools/kttool/WldText.h"
#include "translation/DialogTemplate.h"
#include "translation/Lookup.h"

namespace kttool {
namespace {

constexpr std::uint32_t kStringsPerBlock = 16;

ModuleText TextOf(const PeResource& resource, unsigned kind, std::string position, size_t scope,
                  WideText text) {
    ModuleText found;
    found.kind = kind;
    found.resource = resource.name;
    found.language = resource.language;
    found.position = std::move(position);
    found.scope = scope;
    found.text = std::move(text);
    return found;
}

// Sixteen counted strings; what follows the sixteenth is not read.
void AppendStringTexts(const PeResource& resource, std::vector<ModuleText>& out) {
    if (!resource.name.isNumber || resource.name.number == 0)
        throw FormatError("string table block " + Describe(resource.name) +
                          " is not numbered from 1");
    const ByteView& bytes = resource.data;
    size_t at = 0;
    for (std::uint32_t i = 0; i < kStringsPerBlock; ++i) {
        const std::uint32_t id = (resource.name.number - 1) * kStringsPerBlock + i;
        if (bytes.size() - at < 2)
            throw FormatError("string table block " + Describe(resource.name) +
                              " ends before string " + std::to_string(id));
        const size_t length = bytes[at] | bytes[at + 1] << 8;
        at += 2;
        if (length > (bytes.size() - at) / 2)
            throw FormatError("string " + std::to_string(id) + " runs past the end of its block");
        WideText text;
        for (size_t unit = 0; unit < length; ++unit, at += 2)
            text += static_cast<KTWCHAR>(bytes[at] | bytes[at + 1] << 8);
        if (!text.empty())
            out.push_back(TextOf(resource, kSuppKindString, "string " + std::to_string(id), 0,
                                 std::move(text)));
    }
}

// The texts the dialog rewriting translates: caption, buttons and statics.
void AppendDialogTexts(const PeResource& resource, size_t scope, std::vector<ModuleText>& out) {
    const auto fail = [&](const std::string& what) {
        return FormatError("dialog " + Describe(resource.name) + ": " + what);
    };
    const auto text = [](const kt::CTemplateWalk& walk, const kt::TemplateSpan& span) {
        return WideText(walk.Text(span), span.size / sizeof(KTWCHAR) - 1);
    };
    // The walk reads texts in place, as 16-bit units: a copy is aligned.
    const Bytes aligned(resource.data.data(), resource.data.data() + resource.data.size());
    kt::CTemplateWalk walk(aligned.data(), aligned.size());
    kt::TemplateHeader header;
    if (!walk.ReadHeader(header))
        throw fail("the template's header is cut short");
    if (header.title.size > sizeof(KTWCHAR))
        out.push_back(
            TextOf(resource, kSuppKindDialog, "caption", scope, text(walk, header.title)));
    for (unsigned i = 0; i < header.itemCount; ++i) {
        kt::TemplateItem item;
        if (!walk.ReadItem(item))
            throw fail("control " + std::to_string(i) + " runs past the end of the template");
        if (item.TranslatesTitle() && !item.title.isOrdinal &&
            item.title.span.size > sizeof(KTWCHAR))
            out.push_back(TextOf(resource, kSuppKindDialog, "control " + std::to_string(i), scope,
                                 text(walk, item.title.span)));
    }
}

bool SetsFont(const PeResource& resource) {
    const Bytes aligned(resource.data.data(), resource.data.data() + resource.data.size());
    kt::CTemplateWalk walk(aligned.data(), aligned.size());
    kt::TemplateHeader header;
    return walk.ReadHeader(header) && header.hasFont;
}

}  // namespace

std::vector<ModuleText> TextsOfResources(const std::vector<PeResource>& resources,
                                         size_t& nextScope) {
    std::vector<ModuleText> texts;
    for (const PeResource& resource : resources) {
        if (!resource.type.isNumber)
            continue;
        switch (resource.type.number) {
            case kStringType:
                AppendStringTexts(resource, texts);
                break;
            case kMenuType:
                AppendMenuTexts(resource, nextScope, texts);
                break;
            case kDialogType:
                AppendDialogTexts(resource, nextScope++, texts);
                break;
            default:
                break;
        }
    }
    return texts;
}

std::string WhereOf(const std::string& fileName, const ModuleText& text) {
    const char* const kind = text.kind == kSuppKindDialog ? "dialog"
                             : text.kind == kSuppKindMenu ? "menu"
                                                          : "string table block";
    return fileName + " " + kind + " " + Describe(text.resource) + " " + text.position;
}

Bytes ReadWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error(path + ": cannot be opened");
    Bytes bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (file.bad())
        throw std::runtime_error(path + ": cannot be read");
    return bytes;
}

std::string ModuleFileName(const std::string& path) { return path.substr(path.find_last_of(":\\/") + 1); }

WideText ModuleKeyName(const std::string& path) {
#if defined(_WIN32)
    constexpr unsigned kPathCodePage = kt::sys::kAnsiCodePage;
#else
    constexpr unsigned kPathCodePage = kt::sys::kUtf8CodePage;
#endif
    return Widen(ModuleFileName(path), kPathCodePage);
}

Module ReadModule(const std::string& path) {
    Module module;
    module.fileName = ModuleFileName(path);
    module.keyName = ModuleKeyName(path);
    size_t nextScope = 1;
    try {
        const Bytes file = ReadWholeFile(path);
        const std::vector<PeResource> resources = ReadPeResources(file);  // views of `file`
        module.texts = TextsOfResources(resources, nextScope);
        for (const PeResource& resource : resources)
            if (resource.type.isNumber && resource.type.number == kDialogType && SetsFont(resource))
                module.rewritesFont = true;
    } catch (const FormatError& error) {
        throw FormatError(path + ": " + error.what());
    }
    return module;
}

}  // namespace kttool
