// Dialog templates rewritten with translated captions, the dictionary's font
// and a layout, read back field by field by the tests' own walker.
#include <gtest/gtest.h>

#include <cstdlib>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tests/translation/TemplateBuilder.h"
#include "tests/translation/TemplateWalker.h"
#include "tests/translation/TestDictionary.h"
#include "translation/Rewriting.h"

namespace kt::test {
namespace {

std::string Narrow(const KTWCHAR* text) {
    std::string narrow;
    for (; *text != 0; ++text)
        narrow += static_cast<char>(*text);
    return narrow;
}

struct Form {
    const char* name;
    bool extended;
};
constexpr Form kForms[] = {{"classic", false}, {"extended", true}};

ItemShape Item(std::uint32_t id, Field windowClass, Field title, Bytes creationData = {}) {
    ItemShape item;
    item.id = id;
    item.x = static_cast<std::int16_t>(4 * id);
    item.y = static_cast<std::int16_t>(3 * id);
    item.cx = 40;
    item.cy = 12;
    item.windowClass = windowClass;
    item.title = title;
    item.creationData = creationData;
    return item;
}

// A dialog of the form with a font block.
DialogShape WithFont(const Form& form, const char* title) {
    DialogShape dialog;
    dialog.extended = form.extended;
    dialog.style |= kDsSetFont;
    dialog.font = {8, 400, 0, 0, W("Face")};
    dialog.title = W(title);
    return dialog;
}

// The template rewritten within its own bytes (or laid out first, when
// `layout` is given) and read back.
DialogShape Rewrite(const DialogShape& source, const char* prefix = nullptr, const unsigned* layout = nullptr) {
    const Bytes bytes = TemplateBuilder::Build(source);
    unsigned size = 0;
    void* rewritten = layout != nullptr
                          ? LayoutDialogTemplate(bytes.data(), bytes.size(), *layout, &size, prefix)
                          : RewriteDialogTemplate(bytes.data(), bytes.size(), &size, prefix);
    DialogShape result;
    EXPECT_NE(rewritten, static_cast<const void*>(bytes.data()));
    if (rewritten != nullptr && rewritten != static_cast<const void*>(bytes.data())) {
        EXPECT_TRUE(TemplateWalker::Read(rewritten, size, result));
        std::free(rewritten);
    }
    return result;
}

Font DictionaryFont(std::uint16_t weight) {
    const CSuppDictionary& dictionary = SuppDictionary();
    return {static_cast<std::uint16_t>(dictionary.fontSize), weight, 0, static_cast<std::uint8_t>(dictionary.charset),
            WideString(dictionary.fontName)};
}

TEST(DialogRewrite, TranslatesTheTitleAndTheCaptionsOfButtonsAndStaticsOnly) {
    AddTranslations({{"rw.Title", "Titel"}, {"rw.OK", "Gut"}, {"rw.Label", "Beschriftung"}, {"rw.Blank", ""}});
    for (const Form& form : kForms) {
        DialogShape source;
        source.extended = form.extended;
        source.menu = Field::Ordinal(7);
        source.windowClass = Field::Text(W("MyDialogClass"));
        source.title = W("rw.Title");
        source.items = {Item(1, Field::Ordinal(kButton), Field::Text(W("rw.OK"))),
                        Item(2, Field::Ordinal(kStatic), Field::Text(W("rw.Label")), {1, 2, 3}),
                        Item(3, Field::Ordinal(kEdit), Field::Text(W("rw.OK"))),
                        Item(4, Field::Text(W("Button")), Field::Text(W("rw.OK")), {9, 9, 9, 9}),
                        Item(5, Field::Ordinal(kStatic), Field::Ordinal(5)),
                        Item(6, Field::Ordinal(kButton), Field::Text(W(""))),
                        Item(7, Field::Ordinal(kButton), Field::Text(W("rw.NotInTheDictionary"))),
                        Item(8, Field::Ordinal(kButton), Field::Text(W("rw.Blank")))};
        DialogShape expected = source;
        expected.title = W("Titel");
        expected.items[0].title = Field::Text(W("Gut"));
        expected.items[1].title = Field::Text(W("Beschriftung"));
        EXPECT_EQ(Rewrite(source), expected) << form.name;

        // Without a size the template is read as far as its structure goes.
        const Bytes bytes = TemplateBuilder::Build(source);
        unsigned bounded = 0, unbounded = 0;
        void* first = RewriteDialogTemplate(bytes.data(), bytes.size(), &bounded, nullptr);
        void* second = Supp_RewriteDialog(bytes.data(), &unbounded, nullptr);
        ASSERT_EQ(bounded, unbounded);
        EXPECT_EQ(std::memcmp(first, second, bounded), 0) << form.name;
        std::free(first);
        std::free(second);
    }
}

TEST(DialogRewrite, FontBlockTakesTheDictionarysFontAndKeepsTheWeight) {
    AddTranslations({{"rw.FontTitle", "Schrift"}});
    for (const Form& form : kForms) {
        DialogShape source;
        source.extended = form.extended;
        source.style |= kDsSetFont;
        source.title = W("rw.FontTitle");
        source.font = {12, 700, 1, 2, W("Source Face")};
        source.items = {Item(1, Field::Ordinal(kButton), Field::Text(W("rw.FontTitle")))};
        DialogShape expected = source;
        expected.title = W("Schrift");
        expected.items[0].title = Field::Text(W("Schrift"));
        expected.font = DictionaryFont(form.extended ? 700 : 0);
        EXPECT_EQ(Rewrite(source), expected) << form.name;
    }
}

TEST(DialogRewrite, KeyedTranslationWinsAndOtherPrefixesFallBackToThePlainOne) {
    AddTranslations({{"rw.Keyed", "plain"}, {"app.dll#1#7rw.Keyed", "keyed"}});
    DialogShape source;
    source.title = W("rw.Keyed");
    source.items = {Item(1, Field::Ordinal(kStatic), Field::Text(W("rw.Keyed")))};
    const struct {
        const char* prefix;
        const char* shown;
    } cases[] = {{"app.dll#1#7", "keyed"}, {"app.dll#1#8", "plain"}, {nullptr, "plain"}};
    for (const auto& c : cases) {
        const DialogShape result = Rewrite(source, c.prefix);
        EXPECT_EQ(result.title, W(c.shown)) << (c.prefix != nullptr ? c.prefix : "null");
        ASSERT_EQ(result.items.size(), 1u);
        EXPECT_EQ(result.items[0].title, Field::Text(W(c.shown)));
    }
}

// Each caption grows by an odd number of characters and each item has
// creation data of another length, so every later item moves by a
// different amount and must be realigned.
TEST(DialogRewrite, LongerCaptionsShiftLaterItemsWhichStayAligned) {
    AddTranslations({{"rw.a", "rw.a, longer"}, {"rw.bb", "rw.bb, much longer"}, {"rw.ccc", "rw.ccc+"}});
    for (const Form& form : kForms) {
        DialogShape source = WithFont(form, "rw.bb");
        const char* captions[] = {"rw.a", "rw.bb", "rw.ccc", "rw.a", "rw.ccc"};
        for (std::uint32_t i = 0; i < 5; ++i)
            source.items.push_back(Item(10 + i, Field::Ordinal(i % 2 == 0 ? kButton : kStatic),
                                        Field::Text(W(captions[i])), Bytes(i, static_cast<std::uint8_t>(0xA0 + i))));
        DialogShape expected = source;
        expected.title = W("rw.bb, much longer");
        expected.font = DictionaryFont(form.extended ? 400 : 0);
        const char* shown[] = {"rw.a, longer", "rw.bb, much longer", "rw.ccc+", "rw.a, longer", "rw.ccc+"};
        for (size_t i = 0; i < 5; ++i)
            expected.items[i].title = Field::Text(W(shown[i]));
        EXPECT_EQ(Rewrite(source), expected) << form.name;
    }
}

TEST(DialogRewrite, KeepsMoreThan255Items) {
    AddTranslations({{"rw.Many", "Viele"}});
    for (const Form& form : kForms) {
        DialogShape source;
        source.extended = form.extended;
        for (std::uint32_t i = 0; i < 300; ++i)
            source.items.push_back(Item(i, Field::Ordinal(kButton), Field::Text(W("rw.Many"))));
        DialogShape expected = source;
        for (ItemShape& item : expected.items)
            item.title = Field::Text(W("Viele"));
        EXPECT_EQ(Rewrite(source), expected) << form.name;
    }
}

TEST(DialogLayout, MovesEachEdgeOfTheControlAtItsPositionAndGrowsTheDialog) {
    AddTranslations({{"rw.Moved", "Bewegt"}});
    const unsigned layout = AddLayout("layout.dll#1#100", {20, 10},
                                      {{0, {10, 0, 10, 0}}, {3, {5, -3, 7, 2}}, {9, {50, 50, 50, 50}}});
    for (const Form& form : kForms) {
        DialogShape source = WithFont(form, "");
        for (std::uint32_t i = 0; i < 5; ++i)
            source.items.push_back(Item(i, Field::Ordinal(kButton), Field::Text(W("rw.Moved")), Bytes(i % 2)));
        source.items[3].x = 10, source.items[3].y = 20, source.items[3].cx = 30, source.items[3].cy = 40;

        DialogShape translated = source;
        translated.font = DictionaryFont(form.extended ? 400 : 0);
        for (ItemShape& item : translated.items)
            item.title = Field::Text(W("Bewegt"));
        const unsigned otherDialog = Supp_HashKey("layout.dll#1#101");
        EXPECT_EQ(Rewrite(source, "layout.dll#1#101", &otherDialog), translated) << form.name;

        DialogShape expected = translated;
        expected.cx = 220, expected.cy = 110;
        expected.items[0].x = 10;  // moved right by 10, width kept
        expected.items[3].x = 15, expected.items[3].y = 17, expected.items[3].cx = 32, expected.items[3].cy = 45;
        EXPECT_EQ(Rewrite(source, "layout.dll#1#100", &layout), expected) << form.name;
    }
}

TEST(DialogLayout, SizeDeltaAppliesToADialogWithoutItems) {
    AddTranslations({{"rw.Empty", "Leer"}});
    const unsigned layout = AddLayout("layout.dll#1#Empty", {-30, 5}, {});
    DialogShape source;
    source.title = W("rw.Empty");
    DialogShape expected = source;
    expected.title = W("Leer");
    expected.cx = 170, expected.cy = 105;
    EXPECT_EQ(Rewrite(source, nullptr, &layout), expected);
}

// Deltas far beyond 16 bits wrap the words they move, as the dialog manager
// would read them.
TEST(DialogLayout, HugeDeltasWrapIn16Bits) {
    constexpr int kHuge = 0x7FFFFFFF;      // -1 in 16 bits
    constexpr int kHugePlus16 = 0x7FFF0010;  // +16 in 16 bits
    AddTranslations({{"rw.Huge", "Riesig"}});
    const unsigned layout = AddLayout("layout.dll#1#Huge", {kHuge, kHugePlus16}, {{0, {kHuge, 0, kHugePlus16, 0}}});
    DialogShape source;
    source.items.push_back(Item(0, Field::Ordinal(kButton), Field::Text(W("rw.Huge"))));
    DialogShape expected = source;
    expected.cx = 199, expected.cy = 116;
    expected.items[0].title = Field::Text(W("Riesig"));
    expected.items[0].x = -1, expected.items[0].cx = 57;
    EXPECT_EQ(Rewrite(source, nullptr, &layout), expected);
}

// With the dictionary empty, templates are handed back, layouts or not; then
// an entry for the dictionary's face name replaces the font.
void EmptyDictionaryThenFaceName() {
    DialogShape source;
    source.style |= kDsSetFont;
    source.font = {8, 0, 0, 0, W("F")};
    source.title = W("rw.Alone");
    const Bytes bytes = TemplateBuilder::Build(source);
    const unsigned layout = AddLayout("fresh.dll#1#1", {5, 5}, {});
    unsigned rewritten = 1, laidOut = 1;
    const bool handedBack = RewriteDialogTemplate(bytes.data(), bytes.size(), &rewritten, nullptr) == bytes.data() &&
                            LayoutDialogTemplate(bytes.data(), bytes.size(), layout, &laidOut, nullptr) == bytes.data();

    AddTranslations({{Narrow(SuppDictionary().fontName).c_str(), "Translated Face"}});
    const bool translatedFace = Rewrite(source).font.face == W("Translated Face");
    std::fprintf(stderr, "handed back %d, sizes %u %u, face translated %d\n", handedBack, rewritten, laidOut,
                 translatedFace);
    std::exit(0);
}

// The dictionary is the process's: this runs in a process of its own, whose
// dictionary starts empty.
TEST(DialogRewriteDeathTest, AnEmptyDictionaryHandsTemplatesBackAndAFaceNameEntryReplacesTheFont) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(EmptyDictionaryThenFaceName(), ::testing::ExitedWithCode(0),
                "handed back 1, sizes 0 0, face translated 1");
}

// Every way a template can end too early or claim more than it holds: the
// original comes back, and no byte outside it is read (the copies are of
// exactly their size, for the address sanitizer).
TEST(DialogRewriteBounds, MalformedTemplatesAreHandedBackUnread) {
    AddTranslations({{"rw.Bounds", "Grenzen"}});
    const unsigned layout = AddLayout("bounds.dll#1#1", {1, 1}, {{0, {1, 1, 1, 1}}});
    for (const Form& form : kForms) {
        DialogShape source = WithFont(form, "rw.Bounds");
        source.items = {Item(1, Field::Ordinal(kButton), Field::Text(W("rw.Bounds")), {1, 2, 3}),
                        Item(2, Field::Text(W("Edit")), Field::Ordinal(3), {4})};
        const Bytes whole = TemplateBuilder::Build(source);
        Bytes overCounted = whole;
        overCounted.at(form.extended ? 16 : 8) += 1;
        Bytes creationPastEnd = whole;
        creationPastEnd.at(whole.size() - 3) = 2;  // the last item's count: 2 bytes where 1 stands

        std::vector<Bytes> inputs = {overCounted, creationPastEnd};
        for (size_t cut = 0; cut < whole.size(); ++cut)
            inputs.emplace_back(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cut));
        for (const Bytes& input : inputs) {
            std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[input.size()]);
            std::copy(input.begin(), input.end(), exact.get());
            for (const unsigned* withLayout : {static_cast<const unsigned*>(nullptr), &layout}) {
                unsigned size = 1;
                const void* result =
                    withLayout != nullptr
                        ? LayoutDialogTemplate(exact.get(), input.size(), *withLayout, &size, nullptr)
                        : RewriteDialogTemplate(exact.get(), input.size(), &size, nullptr);
                EXPECT_EQ(result, exact.get()) << form.name << ", " << input.size() << " bytes";
                EXPECT_EQ(size, 0u);
            }
        }
    }
}

}  // namespace
}  // namespace kt::test
