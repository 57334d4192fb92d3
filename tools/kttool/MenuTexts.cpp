#include "tools/kttool/MenuTexts.h"

#include "translation/Lookup.h"

namespace kttool {
namespace {

constexpr std::uint16_t kClassicVersion = 0;
constexpr std::uint16_t kExtendedVersion = 1;
constexpr size_t kHeaderSize = 4;
// Classic item options.
constexpr std::uint16_t kClassicPopup = 0x10;
constexpr std::uint16_t kClassicEnd = 0x80;
// Extended item resource flags.
constexpr std::uint16_t kExtendedPopup = 0x01;
constexpr std::uint16_t kExtendedEnd = 0x80;
constexpr size_t kExtendedItemFixedPart = 14;  // type, state, id, flags
constexpr size_t kHelpIdSize = 4;
constexpr size_t kExtendedAlignment = 4;
// Deeper nesting than this is no menu but a malformed or hostile template.
constexpr int kDeepestLevel = 32;

class MenuReader {
public:
    MenuReader(const PeResource& resource, size_t& nextScope, std::vector<ModuleText>& out)
        : resource(resource), bytes(resource.data), nextScope(nextScope), out(out) {}

    void Read() {
        const std::uint16_t version = Word(0);
        const size_t first = kHeaderSize + Word(2);
        if (version == kClassicVersion)
            ReadClassicLevel(first, "", 0);
        else if (version == kExtendedVersion)
            ReadExtendedLevel(first, "", 0);
        else
            Fail("menu template version " + std::to_string(version) + " is unknown");
    }

private:
    [[noreturn]] void Fail(const std::string& what) const {
        throw FormatError("menu " + Describe(resource.name) + ": " + what);
    }

    std::uint16_t Word(size_t at) const {
        if (at > bytes.size() || bytes.size() - at < 2)
            Fail("cut short at offset " + std::to_string(at));
        return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
    }
    std::uint32_t Dword(size_t at) const { return Word(at) | std::uint32_t{Word(at + 2)} << 16; }

    // A terminated string at `at`; `at` moves behind the terminator.
    WideText String(size_t& at) const {
        WideText text;
        for (std::uint16_t unit; (unit = Word(at)) != 0; at += 2)
            text += static_cast<KTWCHAR>(unit);
        at += 2;
        return text;
    }

    void Enter(int level) const {
        if (level >= kDeepestLevel)
            Fail("nested deeper than " + std::to_string(kDeepestLevel) + " levels");
    }

    // The walk translates popups, and items with an id: an item with text and
    // id 0 is never written back.
    void Add(const WideText& text, const std::string& position, size_t scope, bool translated) {
        if (text.empty() || !translated)
            return;
        ModuleText item;
        item.kind = kSuppKindMenu;
        item.resource = resource.name;
        item.language = resource.language;
        item.position = "item " + position;
        item.scope = scope;
        item.text = text;
        out.push_back(std::move(item));
    }

    static std::string Child(const std::string& parent, int index) {
        return parent.empty() ? std::to_string(index) : parent + "." + std::to_string(index);
    }

    size_t ReadClassicLevel(size_t at, const std::string& parent, int level) {
        Enter(level);
        const size_t scope = nextScope++;
        for (int index = 0;; ++index) {
            const std::uint16_t options = Word(at);
            at += 2;
            const bool popup = (options & kClassicPopup) != 0;
            std::uint16_t id = 0;
            if (!popup) {
                id = Word(at);
                at += 2;
            }
            Add(String(at), Child(parent, index), scope, popup || id != 0);
            if (popup)
                at = ReadClassicLevel(at, Child(parent, index), level + 1);
            if ((options & kClassicEnd) != 0)
                return at;
        }
    }

    size_t ReadExtendedLevel(size_t at, const std::string& parent, int level) {
        Enter(level);
        const size_t scope = nextScope++;
        for (int index = 0;; ++index) {
            at = (at + kExtendedAlignment - 1) / kExtendedAlignment * kExtendedAlignment;
            const std::uint32_t id = Dword(at + 8);
            const std::uint16_t flags = Word(at + 12);
            at += kExtendedItemFixedPart;
            const bool popup = (flags & kExtendedPopup) != 0;
            Add(String(at), Child(parent, index), scope, popup || id != 0);
            if (popup) {
                at = (at + kExtendedAlignment - 1) / kExtendedAlignment * kExtendedAlignment +
                     kHelpIdSize;
                at = ReadExtendedLevel(at, Child(parent, index), level + 1);
            }
            if ((flags & kExtendedEnd) != 0)
                return at;
        }
    }

    const PeResource& resource;
    const ByteView& bytes;
    size_t& nextScope;
    std::vector<ModuleText>& out;
};

}  // namespace

void AppendMenuTexts(const PeResource& resource, size_t& nextScope, std::vector<ModuleText>& out) {
    MenuReader(resource, nextScope, out).Read();
}

}  // namespace kttool
