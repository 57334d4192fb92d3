// What a host module can do with kticore so far, step by step, printed.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "kticore/kticore.h"

#if defined(_WIN32)
#    define DEMO_EXPORT extern "C" __declspec(dllexport)
#else
#    include <dlfcn.h>
#    include <fcntl.h>
#    include <pthread.h>
#    include <semaphore.h>
#    include <sys/mman.h>
#    define DEMO_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

void Step(const char* title) { std::printf("\n== %s\n", title); }

std::string Narrow(const KTWCHAR* text) {
    std::string narrow;
    for (; *text != 0; ++text)
        narrow += *text < 0x80 ? static_cast<char>(*text) : '?';
    return narrow;
}

void ShowActivity(const char* when) {
    unsigned long long bytes = 0;
    unsigned int ops = 0;
    Get_CoreActivity(&bytes, &ops);
    std::printf("   activity %-22s %llu bytes, %u operations\n", when, bytes, ops);
}

// A host's own object: one interface, counted by the library's template.
struct IGreeter : IKTUnknown {
    virtual const char* Greeting() = 0;
};

class CGreeter : public CKTUnknownImpl<IGreeter> {
public:
    const char* Greeting() override { return "hello from a counted object"; }
    ~CGreeter() override { std::printf("   CGreeter destroyed by its last Release\n"); }
};

// Declines twice to free anything, then gives up.
class CPatientSink : public ILowMemoryNotifySink {
public:
    int OnLowMemory(DWORD attempt) override {
        std::printf("   low-memory sink called, attempt %lu\n",
                    static_cast<unsigned long>(attempt));
        return attempt < 2;
    }
};

void ObjectModel() {
    Step("Objects are counted and asked for interfaces by run-time type");
    auto* greeter = new CGreeter;
    void* out = nullptr;
    if (greeter->QueryInterface(typeid(IGreeter), &out))
        std::printf("   QueryInterface(IGreeter) -> \"%s\"\n",
                    static_cast<IGreeter*>(out)->Greeting());
    std::printf("   QueryInterface(IHeap) answers %d\n",
                greeter->QueryInterface(typeid(IHeap), nullptr));
    std::printf("   Release -> %lu\n", static_cast<unsigned long>(greeter->Release()));
    std::printf("   Release -> %lu\n", static_cast<unsigned long>(greeter->Release()));
}

void Heaps() {
    Step("Private heaps: zero-filled blocks, freed through any heap");
    IHeap* heap = new_MemoryHeap(0);
    IHeap* defaultHeap = Mem_DefaultHeap(0);
    ShowActivity("before:");
    auto* block = static_cast<char*>(heap->Alloc(100));
    ShowActivity("after Alloc(100):");
    std::strcpy(block, "kept across Realloc");
    block = static_cast<char*>(heap->Realloc(block, 4000));
    std::printf("   Realloc(4000): \"%s\", block size %zu, header %zu bytes\n", block,
                heap->GetBlockSize(block), heap->GetHeaderSize(0));
    defaultHeap->Free(block);
    std::printf("   freed through the default heap, which ignores counting: Release -> %lu\n",
                static_cast<unsigned long>(defaultHeap->Release()));
    for (int i = 0; i < 1000; ++i)
        heap->Alloc(64);
    std::printf("   1000 blocks left in the private heap; its last Release frees them: %lu\n",
                static_cast<unsigned long>(heap->Release()));
}

void LowMemory() {
    Step("A sink is asked before an allocation fails");
    static CPatientSink sink;
    Mem_SetLowMemoryNotifySink(&sink);
    try {
        Mem_DefaultHeap(0)->Alloc(size_t{1} << 52);
    } catch (CXMemException& failure) {
        std::printf("   CXMemException, code %d\n", failure.GetCode());
    }
    try {
        Mem_SetLowMemoryNotifySink(&sink);
    } catch (CXException& refusal) {
        std::printf("   a second sink is refused with code %d\n", refusal.GetCode());
    }
}

void Failures() {
    Step("Failures are numbers, thrown by the library and caught by reference");
    try {
        XThrowFileError(32, KTW("C:\\data\\locked.dat"), XFILEOP_OPEN);  // ERROR_SHARING_VIOLATION
    } catch (CXFileException& failure) {
        std::printf("   CXFileException code %d, operation %lu, name \"%s\"\n", failure.GetCode(),
                    static_cast<unsigned long>(failure.operation), Narrow(failure.name).c_str());
    }
    std::printf("   Win32 error 5 -> %lu, storage status 0x80030005 -> %lu\n",
                static_cast<unsigned long>(XErrorFromWin32(5)),
                static_cast<unsigned long>(XErrorFromHResult(0x80030005)));
}

void Strings() {
    Step("Strings share their text until one of them changes it");
    CXString original("C:\\Projects\\kticore\\docs\\design\\strings.txt");
    CXString copy = original;
    std::printf("   copy shares the buffer: %s\n",
                static_cast<const char*>(copy) == original ? "yes" : "no");
    copy.ChangeFileExt("md");
    std::printf("   after ChangeFileExt(\"md\"): \"%s\" and the original \"%s\"\n",
                static_cast<const char*>(copy), static_cast<const char*>(original));
    char directory[64];
    original.GetFilePath(directory);
    std::printf("   directory \"%s\", name \"%s\", extension \"%s\"\n", directory,
                original.GetFileName(), original.GetFileExt());
    original.ReducePathString(30);
    std::printf("   shortened for display: \"%s\"\n", static_cast<const char*>(original));

    _setmbcp(932);
    CXString japanese("\x93\xFA\x96\x7B\x8C\xEA");  // three Shift-JIS characters
    std::printf("   in code page 932, a text of %u bytes has %u characters; the second is 0x%04X\n",
                japanese.GetSize(), japanese.GetLength(), static_cast<unsigned>(japanese.GetAt(1)));
    _setmbcp(_MB_CP_ANSI);

    CXString line;
    line.Format("%s=%d (%5.2f) %S", "temperature", 21, 21.456, KTW("wide text"));
    std::printf("   Format: \"%s\"\n", static_cast<const char*>(line));
    CXStringW wide;
    wide.Format(KTW("%s and %S"), KTW("wide"), "narrow");
    std::printf("   wide Format: \"%s\"\n", Narrow(wide).c_str());
}

void Containers() {
    Step("Maps find entries by the hash of their name; enumerators keep them alive");
    auto* map = new CTMapEnum<const char*, int, const char*, int>;
    map->Set("width", 640);
    map->Set("height", 480);
    map->Set("width", 800);  // replaces
    CTEnum<const char*>* names = map->GetEnum();
    map->Release();
    const char* name = nullptr;
    while (names->Next(1, &name, nullptr)) {
        int value = 0;
        map->Lookup(name, value);
        std::printf("   %s = %d\n", name, value);
    }
    names->Release();
}

// A host class that can be stored on a stream by its class name.
class CNote : public CKTUnknownImpl<IPersistXStream> {
public:
    const char* GetClassName() override { return "CLSID_DemoNote"; }
    ULONG GetSize() override { return static_cast<ULONG>(text.size() + 1); }
    void Load(IXStream* stream) override {
        char line[256];  // a line and the two places a stream may fill behind it
        stream->ReadLine(line, sizeof line - 2);
        text = line;
    }
    void Save(IXStream* stream) override { stream->WriteString(text.c_str()); }
    std::string text;
};

HMODULE ThisModule() {
#if defined(_WIN32)
    return GetModuleHandleA(nullptr);
#else
    return static_cast<HMODULE>(dlopen(nullptr, RTLD_LAZY));
#endif
}

std::string Hex(IXStream* stream, unsigned from, unsigned to) {
    std::string hex;
    stream->Seek(static_cast<LONG>(from), 0);
    for (unsigned i = from; i < to; ++i) {
        char byte[4];
        std::snprintf(byte, sizeof byte, "%02X ", stream->ReadByte());
        hex += byte;
    }
    return hex;
}

void Values() {
    Step("Variants are stored on streams in a fixed little-endian form");
    IXStream* stream = new_StreamOnMemory();
    unsigned char bytes[] = {0xCA, 0xFE};
    const CKTVariant values[] = {CKTVariant(42), CKTVariant(2.5), CKTVariant("narrow"),
                                 CKTVariant(KTW("wide")), CKTVariant(tagRECT{0, 0, 640, 480}),
                                 CKTVariant(tagKTBLOB{2, bytes})};
    for (const CKTVariant& value : values) {
        const unsigned start = stream->GetPosition();
        stream->WriteVariant(&value);
        std::printf("   kind %2u stored as %s\n", value.vt, Hex(stream, start, stream->GetPosition()).c_str());
    }
    stream->Seek(0, 0);
    for (const CKTVariant& value : values) {
        CKTVariant read;
        stream->ReadVariant(&read);
        std::printf("   kind %2u read back %s\n", read.vt, read == value ? "equal" : "DIFFERENT");
    }
    stream->Release();
}

void StoredObjects() {
    Step("Objects are stored by class name and made again by the registry");
    RegisterObject("CLSID_DemoNote", ThisModule());
    auto* note = new CNote;
    note->text = "remember the milk";
    IXStream* stream = new_StreamOnMemory();
    const CKTVariant stored(static_cast<IKTUnknown*>(note));
    note->Release();
    stream->WriteVariant(&stored);
    const unsigned length = stream->GetLength();
    std::printf("   a note takes %u bytes: %s\n", length, Hex(stream, 0, length).c_str());

    stream->Seek(0, 0);
    CKTVariant read;
    stream->ReadVariant(&read);
    void* found = nullptr;
    read.punkVal->QueryInterface(typeid(IPersistXStream), &found);
    auto* copy = static_cast<IPersistXStream*>(found);
    std::printf("   read back as a new %s: \"%s\"\n", copy->GetClassName(),
                static_cast<CNote*>(copy)->text.c_str());
    copy->Release();

    UnregisterObject("CLSID_DemoNote");
    stream->Seek(0, 0);
    stream->ReadVariant(&read);
    IXStream* rewritten = new_StreamOnMemory();
    rewritten->WriteVariant(&read);
    const bool same = rewritten->GetLength() == length &&
                      Hex(rewritten, 0, length) == Hex(stream, 0, length);
    std::printf("   with the class unknown a proxy keeps the bytes; written back %s\n",
                same ? "identical" : "DIFFERENT");
    rewritten->Release();
    stream->Release();
}

// A block below 2 GiB, where the 32-bit address of a memory name reaches.
char* LowBlock(size_t size) {
    for (std::uintptr_t address = 0x30000000; address < 0x70000000; address += 0x01000000) {
#if defined(_WIN32)
        void* block = VirtualAlloc(reinterpret_cast<void*>(address), size, MEM_RESERVE | MEM_COMMIT,
                                   PAGE_READWRITE);
#else
        void* block = mmap(reinterpret_cast<void*>(address), size, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
        block = block == MAP_FAILED ? nullptr : block;
#endif
        if (block != nullptr)
            return static_cast<char*>(block);
    }
    return nullptr;
}

std::basic_string<KTWCHAR> WideOf(const std::string& text) {
    return std::basic_string<KTWCHAR>(text.begin(), text.end());
}

void Files() {
    Step("Files: an output file replaces its target only at Commit");
    const std::basic_string<KTWCHAR> temporary = Fio_GetTempFileName();
    const std::basic_string<KTWCHAR> name = temporary + KTW(".notes");
    static const char kNotes[] = "first line\nsecond line\n";
    IXOutFile* out = Fio_OpenOut(name.c_str(), 0);
    out->Write(kNotes, sizeof kNotes - 1);
    std::printf("   writing; the target exists yet: %d\n", Fio_IsFileExist(name.c_str()));
    out->Commit();
    out->Release();
    std::printf("   committed; the target exists: %d\n", Fio_IsFileExist(name.c_str()));

    IXOutFile* abandoned = Fio_OpenOut(name.c_str(), 0);
    abandoned->WriteString("never seen");
    abandoned->Release();  // without Commit: the work goes

    IXFile* file = Fio_Open(name.c_str(), 0);
    char line[64];
    while (file->GetPosition() < file->GetLength()) {
        file->ReadLine(line, 62);
        std::printf("   read back through the mapped view: %s", line);
    }
    std::printf("   %lu bytes in all\n", static_cast<unsigned long>(file->GetLength()));
    file->Release();
    Fio_DeleteFile(name.c_str());
    Fio_DeleteFile(temporary.c_str());

    char* block = LowBlock(4096);
    if (block == nullptr)
        return;
    std::strcpy(block, "a host's own bytes, read in place\n");
    const std::string memoryName = "fmem::" + std::to_string(reinterpret_cast<std::uintptr_t>(block)) +
                                   "," + std::to_string(std::strlen(block));
    IXFile* memory = Fio_Open(WideOf(memoryName).c_str(), 0);
    memory->ReadLine(line, 62);
    std::printf("   %s holds: %s", memoryName.c_str(), line);
    memory->Release();
}

#if defined(_WIN32)
void StoreNote(IXStorage* storage, const char* name, const char* text) {
    auto* note = new CNote;
    note->text = text;
    const CKTVariant stored(static_cast<IKTUnknown*>(note));
    note->Release();
    IXStream* stream = storage->CreateStream(name);
    stream->WriteVariant(&stored);
    stream->Release();
}

// Every storage and stream under `storage`, a stream's note made again by
// the registry.
void PrintStorage(IXStorage* storage, const std::string& indent) {
    CTEnum<const char*>* streams = storage->EnumStreams();
    const char* name = nullptr;
    while (streams->Next(1, &name, nullptr)) {
        IXStream* stream = storage->OpenStream(name);
        CKTVariant read;
        stream->ReadVariant(&read);
        void* found = nullptr;
        read.punkVal->QueryInterface(typeid(IPersistXStream), &found);
        auto* note = static_cast<IPersistXStream*>(found);
        std::printf("%sstream %s: a %s, \"%s\"\n", indent.c_str(), name, note->GetClassName(),
                    static_cast<CNote*>(note)->text.c_str());
        note->Release();
        stream->Release();
    }
    streams->Release();
    CTEnum<const char*>* storages = storage->EnumStorages();
    while (storages->Next(1, &name, nullptr)) {
        std::printf("%sstorage %s\n", indent.c_str(), name);
        IXStorage* child = storage->OpenStorage(name);
        PrintStorage(child, indent + "  ");
        child->Release();
    }
    storages->Release();
}

void CompoundStorages() {
    Step("Compound storages: nested storages whose streams hold stored objects");
    RegisterObject("CLSID_DemoNote", ThisModule());
    const std::basic_string<KTWCHAR> temporary = Fio_GetTempFileName();
    const std::basic_string<KTWCHAR> name = temporary + KTW(".stg");
    IXStorage* file = new_Storage(name.c_str(), 0);
    StoreNote(file, "cover", "the household book");
    IXStorage* kitchen = file->CreateStorage("kitchen");
    StoreNote(kitchen, "shopping", "remember the milk");
    IXStorage* repairs = kitchen->CreateStorage("repairs");
    StoreNote(repairs, "tap", "call the plumber");
    repairs->Release();
    kitchen->Release();
    file->Release();  // a writable storage commits at its last release
    std::printf("   written; read back from %s:\n", Narrow(name.c_str()).c_str());

    IXStorage* again = open_Storage(name.c_str(), 1);
    PrintStorage(again, "   ");
    again->Release();
    UnregisterObject("CLSID_DemoNote");
    Fio_DeleteFile(name.c_str());
    Fio_DeleteFile(temporary.c_str());
}

// tools/lib/run-host-example.sh starts the FTP server when it can and names
// the file it put there in KT_DEMO_FTP_URL.
void FileOverFtp() {
    Step("A file over ftp:// from a server that the demo started");
    const char* url = std::getenv("KT_DEMO_FTP_URL");
    if (url == nullptr) {
        std::printf("   skipped: no FTP server could be started\n");
        return;
    }
    try {
        IXFile* file = Fio_Open(WideOf(url).c_str(), 0);
        char line[128];
        file->ReadLine(line, 126);
        std::printf("   %s holds: %s", Narrow(file->GetName()).c_str(), line);
        file->Release();
    } catch (CXFileException& failure) {
        std::printf("   the download failed: code %d\n", failure.GetCode());
    }
}

// The host's progress sink: it says stop from its `stopAt`-th question on
// (never with 0). It lives on the demo's stack, so counting does nothing.
class CStopAtSink : public KTIFC::IProgress {
public:
    explicit CStopAtSink(int stopAt) : stopAt(stopAt) {}
    ULONG AddRef() override { return 2; }
    ULONG Release() override { return 1; }
    int QueryInterface(const type_info&, void** out) override {
        if (out != nullptr)
            *out = nullptr;
        return 0;
    }
    int IsCancelled() override { return ++questions >= stopAt && stopAt != 0; }
    void SetRange(int low, int high) override { std::printf("   the sink's range: %d to %d\n", low, high); }

    int stopAt;
    int questions = 0;
};

// Four chapters of 25 lines, each chapter a sub-storage: the save knows
// nothing of the sink, and a stop comes out of whichever stream call asked.
bool SaveChapters(IXStorage* document) {
    IXStorage* chapter = nullptr;
    IXStream* text = nullptr;
    try {
        for (int number = 1; number <= 4; ++number) {
            chapter = document->CreateStorage(("chapter " + std::to_string(number)).c_str());
            text = chapter->CreateStream("text");
            for (int line = 1; line <= 25; ++line)
                text->WriteString(("line " + std::to_string(line) + "\n").c_str());
            text->Release();
            text = nullptr;
            chapter->Release();
            chapter = nullptr;
        }
        return true;
    } catch (CXException& stop) {
        std::printf("   the save stopped with code %d\n", stop.GetCode());
        if (text != nullptr)
            text->Release();
        if (chapter != nullptr)
            chapter->Release();
        return false;
    }
}

int ChaptersIn(const KTWCHAR* name) {
    IXStorage* file = open_Storage(name, 1);
    CTEnum<const char*>* chapters = file->EnumStorages();
    const char* chapter = nullptr;
    int count = 0;
    while (chapters->Next(1, &chapter, nullptr))
        ++count;
    chapters->Release();
    file->Release();
    return count;
}

// Reads a document property by name; "(none)" when the file has none.
std::string PropertyText(IKTProperty* properties, const char* name) {
    CKTVariant value;
    return properties->GetProperty(name, &value) ? value.pszVal : "(none)";
}

// The whole save gives the document a title and an author too, which come
// back by name from the reopened file.
void SetTitleAndAuthor(IXStorage* file) {
    IKTProperty* properties = nullptr;
    file->QueryInterface(typeid(IKTProperty), reinterpret_cast<void**>(&properties));
    const CKTVariant title("The household book"), author(KTW("Jane Doe"));  // wide is narrowed
    properties->SetProperty("Title", &title);
    properties->SetProperty("Author", &author);
    properties->Release();
}

void CancellableDocument() {
    Step("A document save that the host's progress sink stops halfway, then a whole one "
         "with its properties");
    const std::basic_string<KTWCHAR> temporary = Fio_GetTempFileName();
    const std::basic_string<KTWCHAR> name = temporary + KTW(".doc");
    for (const int stopAt : {50, 0}) {
        CStopAtSink sink(stopAt);
        IXStorage* file = new_Storage(name.c_str(), XSTG_TRANSACTED);
        IXStorage* document = nullptr;
        new_CIXDocStorage(file, &sink, &document, 0);
        const bool saved = SaveChapters(document);
        document->Release();
        if (saved)
            SetTitleAndAuthor(file);
        else
            static_cast<CStorage*>(file)->Revert();  // the stopped transaction goes
        file->Release();  // commits what is left, the property sets with it
        std::printf("   %s after %d questions; the file holds %d chapters\n",
                    saved ? "saved" : "stopped", sink.questions, ChaptersIn(name.c_str()));
    }
    IXStorage* again = open_Storage(name.c_str(), 1);
    IKTProperty* properties = nullptr;
    again->QueryInterface(typeid(IKTProperty), reinterpret_cast<void**>(&properties));
    for (const char* property : {"Title", "Author", "Company"})
        std::printf("   %s: %s\n", property, PropertyText(properties, property).c_str());
    properties->Release();
    again->Release();
    Fio_DeleteFile(name.c_str());
    Fio_DeleteFile(temporary.c_str());
}
#endif

std::basic_string<KTWCHAR> LeafOf(const std::basic_string<KTWCHAR>& path) {
    const size_t cut = path.find_last_of(KTW("\\/"));
    return cut == std::basic_string<KTWCHAR>::npos ? path : path.substr(cut + 1);
}

void WriteTextFile(const std::basic_string<KTWCHAR>& name, const std::string& text) {
    IXOutFile* out = Fio_OpenOut(name.c_str(), 0);
    out->Write(text.data(), static_cast<DWORD>(text.size()));
    out->Commit();
    out->Release();
}

void ParameterTrees() {
    Step("Parameter trees: settings in memory, as text and on a stream");
    IParam* settings = new_MemParam();
    const CKTVariant title("Demo window");
    const CKTVariant size(tagSIZE{640, 480});
    const CKTVariant zoom(1.25);
    const CKTVariant visible(1, KTVT_BOOL);
    settings->SetValue("Title", &title);
    settings->SetValue("Window\\Size", &size);
    settings->SetValue("Window\\Zoom", &zoom);
    settings->SetValue("Window\\Toolbar\\Visible", &visible);

    CXString line;
    Param_Param2String(settings, line);
    std::printf("   on one line: %s\n", static_cast<const char*>(line));

    const std::basic_string<KTWCHAR> temporary = Fio_GetTempFileName();
    const std::basic_string<KTWCHAR> textFile = temporary + KTW(".settings.ini");
    Param_Param2IniFile(settings, textFile.c_str());
    IParam* fromText = new_MemParam();
    Param_IniFile2Param(textFile.c_str(), fromText);
    std::printf("   text file read back, equal both ways: %d %d\n", Param_Cmp(settings, fromText),
                Param_Cmp(fromText, settings));

    IXStream* stream = new_StreamOnMemory();
    SaveParamToXStream(stream, settings);
    stream->Seek(0, 0);
    IParam* fromStream = new_MemParam();
    LoadParamFromXStream(stream, fromStream);
    std::printf("   %u bytes on a stream, read back equal: %d\n", stream->GetLength(),
                Param_Cmp(settings, fromStream) && Param_Cmp(fromStream, settings));

    // A text that takes its colours from a second file beside it.
    const std::basic_string<KTWCHAR> colors = temporary + KTW(".colors.ini");
    const std::basic_string<KTWCHAR> main = temporary + KTW(".main.ini");
    WriteTextFile(colors, "Background=t0,0,255,255|Foreground=sblack\r\n");
    std::string include = "#include ./";
    for (const KTWCHAR unit : LeafOf(colors))
        include += static_cast<char>(unit);
    WriteTextFile(main, "[\\Colors]\r\n" + include + "\r\n[\\]\r\nTitle=sIncluded\r\n");
    IParam* included = new_MemParam();
    Param_IniFile2Param(main.c_str(), included);
    CKTVariant foreground;
    included->GetValue("Colors\\Foreground", &foreground);
    std::printf("   an include put Colors\\Foreground = %s in the tree\n", static_cast<char*>(foreground));

    for (IParam* tree : {settings, fromText, fromStream, included})
        tree->Release();
    stream->Release();
    for (const auto& name : {textFile, colors, main, temporary})
        Fio_DeleteFile(name.c_str());
}

// Settings kept in a private profile file: a tree made in memory goes to the
// file, comes back into memory and compares equal.
void ProfileFile() {
    Step("Settings in a private profile file");
    const std::basic_string<KTWCHAR> temporary = Fio_GetTempFileName();
    const std::basic_string<KTWCHAR> name = temporary + KTW(".ini");
    IParam* settings = new_MemParam();
    const CKTVariant width(640), title("kticore demo"), on(1, KTVT_BOOL);
    settings->SetValue("Width", &width);
    settings->SetValue("Window\\Title", &title);
    settings->SetValue("Window\\Maximised", &on);

    IParam* file = new_IParamIniFile(name.c_str());
    Param_CopyTo(settings, file);
    IXFile* text = Fio_Open(name.c_str(), 0);
    char line[128];
    while (text->ReadLine(line, 126) > 0)
        std::printf("   %s", line);
    text->Release();

    IParam* back = new_MemParam();
    Param_CopyTo(file, back);
    std::printf("   read back into memory, the same settings: %d\n", Param_Cmp(settings, back));
    back->Release();
    file->Release();
    settings->Release();
    Fio_DeleteFile(name.c_str());
    Fio_DeleteFile(temporary.c_str());
}

// A dictionary and its layout file, as a translator delivers them: the wld
// translates texts, plainly or for one resource of one module; the dlg
// enlarges dialog 100 of demo.dll and widens its fourth control.
void Translation() {
    Step("Translation: texts from a plain text dictionary, switched on and off");
    const std::basic_string<KTWCHAR> temporary = Fio_GetTempFileName();
    const std::basic_string<KTWCHAR> dictionary = temporary + KTW(".wld");
    const std::basic_string<KTWCHAR> layouts = temporary + KTW(".dlg");
    WriteTextFile(dictionary,
                  "; French for the demo\n"
                  "\"KT_WLD_LANG_ID\"\n\"1036\"\n"
                  "\"Open\"\n\"Ouvrir\"\n"
                  "; the same text in dialog 100 of demo.dll\n"
                  "\"demo.dll#1#100Open\"\n\"Ouvrir le fichier\"\n"
                  "\"Line one\\nline two\"\n\"Ligne un\\nligne deux\"\n");
    WriteTextFile(layouts, "[\\demo.dll\\Dialogs\\#100]\r\nDialog Size=z20,10\r\n3=t0,0,10,0\r\n");
    const int loaded = Supp_Init(dictionary.c_str());
    std::printf("   Supp_Init: %d, code page of the translations: %lu\n", loaded, Supp_GetACP());
    const KTWCHAR* const dialogKey = KTW("demo.dll#1#100");
    std::printf("   Open                  -> %s\n", Narrow(Supp_Translate(KTW("Open"))).c_str());
    std::printf("   Open in dialog 100    -> %s\n",
                Narrow(Supp_Translate(KTW("Open"), dialogKey)).c_str());
    std::printf("   Close in dialog 100   -> %s (no translation: the text itself)\n",
                Narrow(Supp_Translate(KTW("Close"), dialogKey)).c_str());
    std::string twoLines = Narrow(Supp_Translate("Line one\nline two"));
    twoLines.replace(twoLines.find('\n'), 1, " | ");
    std::printf("   an escaped line feed  -> %s\n", twoLines.c_str());
    Supp_SetTranslationEnable(0);
    std::printf("   switched off: %d; resources now load untranslated\n",
                Supp_IsTranslationEnable());
    Supp_SetTranslationEnable(1);
    std::printf("   switched on again: %d\n", Supp_IsTranslationEnable());
    std::printf("   font of translated dialogs: %s\n",
                Supp_GetFont() != nullptr ? "the system's" : "MS Shell Dlg");
    for (const auto& name : {dictionary, layouts, temporary})
        Fio_DeleteFile(name.c_str());
}

// A dialog template in memory, written as a resource compiler writes the
// extended form: header, menu, class, title, font, then the items, each on a
// multiple of 4 from the template's start.
class TemplateWriter {
public:
    TemplateWriter& Word(int value) {
        bytes.push_back(static_cast<unsigned char>(value & 0xFF));
        bytes.push_back(static_cast<unsigned char>(value >> 8 & 0xFF));
        return *this;
    }
    TemplateWriter& Dword(unsigned long value) {
        return Word(static_cast<int>(value & 0xFFFF)).Word(static_cast<int>(value >> 16));
    }
    TemplateWriter& Text(const char* text) {
        for (; *text != 0; ++text)
            Word(*text);
        return Word(0);
    }
    TemplateWriter& Align() {
        while (bytes.size() % 4 != 0)
            bytes.push_back(0);
        return *this;
    }
    std::vector<unsigned char> bytes;
};

constexpr int kButtonClass = 0x80, kStaticClass = 0x82;
constexpr unsigned long kDialogStyle = 0x80C80040;  // popup, caption, system menu, DS_SETFONT
constexpr unsigned long kControlStyle = 0x50000000;  // child, visible

std::vector<unsigned char> OptionsDialog() {
    struct Control {
        int windowClass;
        const char* title;
        int id, x, y, cx, cy;
    };
    const Control controls[] = {{kStaticClass, "Options", 3, 10, 10, 140, 8},
                                {kButtonClass, "OK", 1, 10, 60, 50, 14},
                                {kButtonClass, "Cancel", 2, 70, 60, 50, 14}};
    TemplateWriter out;
    out.Word(1).Word(0xFFFF).Dword(0).Dword(0).Dword(kDialogStyle).Word(3);
    out.Word(0).Word(0).Word(160).Word(80).Text("").Text("").Text("Options");
    out.Word(9).Word(400).Word(0).Text("Source Face");
    for (const Control& control : controls) {
        out.Align().Dword(0).Dword(0).Dword(kControlStyle);
        out.Word(control.x).Word(control.y).Word(control.cx).Word(control.cy).Dword(static_cast<unsigned long>(control.id));
        out.Word(0xFFFF).Word(control.windowClass).Text(control.title).Word(0);
    }
    return out.bytes;
}

// Reads the fields of an extended template back from its bytes and prints
// them: the item count at 16, the size at 22, and in each item the rectangle
// 12 bytes into its fixed part.
class TemplateReader {
public:
    explicit TemplateReader(const unsigned char* bytes) : bytes(bytes) {}

    void Print() {
        at = 16;
        const int count = Word();
        at = 22;
        const int cx = Short(), cy = Short();
        Text();
        Text();
        const std::string title = Text();
        const int pointSize = Word();
        at += 4;
        const std::string face = Text();
        std::printf("     \"%s\" %dx%d, font %d \"%s\"\n", title.c_str(), cx, cy, pointSize, face.c_str());
        for (int i = 0; i < count; ++i) {
            at = (at + 3) / 4 * 4 + 12;
            const int x = Short(), y = Short(), width = Short(), height = Short();
            const unsigned long id = Word() | static_cast<unsigned long>(Word()) << 16;
            Word();
            const char* kind = Word() == kButtonClass ? "button" : "static";
            const std::string caption = Text();
            const int creationData = Word();
            at += static_cast<size_t>(creationData);
            std::printf("     %s %lu \"%s\" at %d,%d size %dx%d\n", kind, id, caption.c_str(), x, y, width, height);
        }
    }

private:
    int Word() {
        const int value = bytes[at] | bytes[at + 1] << 8;
        at += 2;
        return value;
    }
    int Short() { return static_cast<short>(Word()); }
    std::string Text() {
        std::string text;
        for (int unit = Word(); unit != 0; unit = Word())
            text += unit < 0x80 ? static_cast<char>(unit) : '?';
        return text;
    }

    const unsigned char* bytes;
    size_t at = 0;
};

// A translator's dictionary and layout for dialog 100 of "demo.dll": the
// dialog grows by 40 units, the OK button moves 10 to the right and the
// Cancel button moves 20 and grows by 40 for its longer caption.
void DialogTemplates() {
    Step("Dialog templates are rewritten: captions, the dictionary's font, moved controls");
    const std::basic_string<KTWCHAR> temporary = Fio_GetTempFileName();
    const std::basic_string<KTWCHAR> wld = temporary + KTW(".wld"), dlg = temporary + KTW(".dlg");
    const char dictionary[] =
        "; the demo's dictionary\n"
        "\"Options\"\n\"Preferences\"\n"
        "\"OK\"\n\"D'accord\"\n"
        "\"demo.dll#1#100Cancel\"\n\"Annuler, ici seulement\"\n";
    const char layout[] =
        "[\\demo.dll\\Dialogs\\#100]\n"
        "Dialog Size=z40,0\n"
        "1=t10,0,10,0\n"
        "2=t20,0,60,0\n";
    WriteTextFile(wld, dictionary);
    WriteTextFile(dlg, layout);
    std::printf("   Supp_AddWld: %d\n", Supp_AddWld(wld.c_str()));

    const std::vector<unsigned char> original = OptionsDialog();
    std::printf("   the template, %u bytes:\n", static_cast<unsigned>(original.size()));
    TemplateReader(original.data()).Print();
    unsigned size = 0;
    void* rewritten = Supp_LayoutDialog(original.data(), Supp_HashKey("demo.dll#1#100"), &size, "demo.dll#1#100");
    std::printf("   rewritten for demo.dll#1#100, %u bytes:\n", size);
    TemplateReader(static_cast<const unsigned char*>(rewritten)).Print();
    if (size != 0)
        std::free(rewritten);
    for (const auto& name : {wld, dlg, temporary})
        Fio_DeleteFile(name.c_str());
}


#if defined(_WIN32)
// Settings in the registry, under a key of the host's own that the host
// makes: text goes in as registry text, wide text too, other kinds as binary
// data behind their kind number.
void RegistrySettings() {
    Step("Settings in the registry");
    const wchar_t* key = L"Software\\kticore-demo";
    HKEY made;
    RegCreateKeyExW(HKEY_CURRENT_USER, key, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &made, nullptr);
    RegCloseKey(made);
    IParam* settings = new_MemParam();
    const CKTVariant width(640), title("kticore demo"), caption(KTW("wide caption"));
    settings->SetValue("Width", &width);
    settings->SetValue("Window\\Title", &title);
    IParam* registry = new_IParamCUReg(key);
    Param_CopyTo(settings, registry);
    registry->SetValue("Caption", &caption);

    IParam* window = registry->GetSection("Window", 0);
    std::printf("   HKCU\\Software\\kticore-demo has the section Window: %s\n", window != nullptr ? "yes" : "no");
    if (window != nullptr)
        window->Release();
    for (const char* name : {"Width", "Caption"}) {
        HKEY raw;
        DWORD type = 0, size = 0;
        RegOpenKeyExW(HKEY_CURRENT_USER, key, 0, KEY_READ, &raw);
        RegQueryValueExA(raw, name, nullptr, &type, nullptr, &size);
        RegCloseKey(raw);
        CKTVariant value;
        registry->GetValue(name, &value);
        std::printf("   %-8s %s of %lu bytes, reads back as kind %u\n", name, type == REG_SZ ? "REG_SZ" : "REG_BINARY",
                    static_cast<unsigned long>(size), value.vt);
    }
    IParam* back = new_MemParam();
    Param_CopyTo(registry, back);
    std::printf("   read back into memory, the same settings: %d\n", Param_Cmp(settings, back));
    back->Release();
    registry->Release();
    settings->Release();
    RegDeleteTreeW(HKEY_CURRENT_USER, key);
}
#endif
}  // namespace

// The factory of the demo's class, found by the registry among the
// executable's exports.
DEMO_EXPORT int CLSID_DemoNote(IKTUnknown*, const type_info& iface, IKTUnknown** out) {
    auto* note = new CNote;
    const int found = note->QueryInterface(iface, reinterpret_cast<void**>(out));
    note->Release();
    return found;
}

namespace {

void SharedServices() {
    Step("A service container shares named objects between the modules of an application");
    // Told when it joins and leaves; finds a sibling through the container it
    // is shown, which lends no reference.
    struct CLogger : CKTUnknownImpl<IKTServiceSink> {
        int OnServiceAdded(IKTUnknown* container) override {
            void* found = nullptr;
            container->QueryInterface(typeid(IKTServiceContainer), &found);
            auto* services = static_cast<IKTServiceContainer*>(found);
            IKTUnknown* sibling = nullptr;
            if (services->GetService("greeter", &sibling)) {
                std::printf("   logger added; its sibling says \"%s\"\n",
                            static_cast<IGreeter*>(sibling)->Greeting());
                sibling->Release();
            }
            services->Release();
            return 0;
        }
        int OnServiceRemoved(IKTUnknown*) override {
            std::printf("   logger removed\n");
            return 0;
        }
    };
    IKTUnknown* made = nullptr;
    CreateObject("CLSID_OFSERVICECONTAINER", nullptr, typeid(IKTServiceContainer), &made);
    auto* services = static_cast<IKTServiceContainer*>(made);
    IKTUnknown* greeter = new CGreeter;
    IKTUnknown* logger = new CLogger;
    services->AddService("greeter", greeter);
    services->AddService("logger", logger);
    std::printf("   \"greeter\" once more: %s\n",
                services->AddService("greeter", logger) ? "replaced" : "refused, the name is taken");
    greeter->Release();
    logger->Release();
    CTEnum<const char*>* names = nullptr;
    services->EnumServiceNames(&names);
    const char* name = nullptr;
    while (names->Next(1, &name, nullptr))
        std::printf("   service \"%s\"\n", name);
    names->Release();
    services->Release();  // tells the logger, then releases both services
}

}  // namespace

// The demo's worker: tells KTCreateThread that it is up, through the event
// (natively the semaphore) named after it, then counts inside a critical
// section that the main thread counts in too.
struct DemoWork {
    ICritSect* section;
    IEvent* done;
    long count;
};

static unsigned DemoWorker(void* argument) {
    auto* work = static_cast<DemoWork*>(argument);
    char name[256];
    KTCreateObjName("demo-worker", name, 0);
#if defined(_WIN32)
    if (HANDLE started = OpenEventA(EVENT_MODIFY_STATE, FALSE, name)) {
        SetEvent(started);
        CloseHandle(started);
    }
#else
    if (sem_t* started = sem_open(name, 0); started != SEM_FAILED) {
        sem_post(started);
        sem_close(started);
    }
#endif
    for (int i = 0; i < 1000; ++i) {
        work->section->Enter();
        ++work->count;
        work->section->Leave();
    }
    work->done->Set();
    return 0;
}

static void Threads() {
    Step("Threads: a start that waits for its thread, sections behind one process-wide mutex");
    DemoWork work = {CriticalSection_New(), Event_New(0), 0};
    unsigned long id = 0;
    void* thread = KTCreateThread("demo-worker", DemoWorker, &work, &id);
    std::printf("   thread %lu started and answered\n", id);
    for (int i = 0; i < 1000; ++i) {
        work.section->Enter();
        ++work.count;
        work.section->Leave();
    }
    std::printf("   the worker's event: %d (1: set)\n", work.done->Wait(60000));
    std::printf("   Wait_All: %d (1: every section is ours); the count: %ld of 2000\n", Wait_All(-1),
                work.count);
    Wait_Release();
#if defined(_WIN32)
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
#else
    pthread_join(reinterpret_cast<pthread_t>(thread), nullptr);
#endif
    work.done->Release();
    work.section->Release();
}

#if defined(_WIN32)
namespace {

// Settings kept in a compound file: each section a storage, each value a
// stream holding one stored variant.
void SettingsInAStorage() {
    Step("Settings in a compound file");
    const std::basic_string<KTWCHAR> temporary = Fio_GetTempFileName();
    const std::basic_string<KTWCHAR> name = temporary + KTW(".stg");
    IXStorage* file = new_Storage(name.c_str(), 0);
    IParam* settings = new_IXStorParam(file);
    file->Release();  // the tree holds the storage
    const CKTVariant width(640), title("kticore demo");
    settings->SetValue("Width", &width);
    settings->SetValue("Window\\Title", &title);
    settings->Release();  // commits, children before parents

    IXStorage* again = open_Storage(name.c_str(), 1);
    IParam* back = new_IXStorParam(again);
    CKTVariant read;
    back->GetValue("Window\\Title", &read);
    std::printf("   Window\\Title read back from the file: \"%s\"\n", read.pszVal);
    IParam* window = back->GetSection("Window", 0);
    std::printf("   the section is a storage of the file: %d\n", window->QueryInterface(typeid(IXStorage), nullptr));
    window->Release();
    back->Release();
    again->Release();
    Fio_DeleteFile(name.c_str());
    Fio_DeleteFile(temporary.c_str());
}


}  // namespace
#endif

namespace {

// A value in another kind, printed in its text form where the new kind has
// one.
void PrintConversion(const char* source, const CKTVariant& from, unsigned short kind) {
    CKTVariant to, text;
    if (KTVariantChangeType(&to, &from, kind) == 0)
        std::printf("   %-24s -> kind %2u fails and leaves kind %u\n", source, kind, to.vt);
    else if (kind == KTVT_RECT)
        std::printf("   %-24s -> kind %2u (%ld, %ld, %ld, %ld)\n", source, kind,
                    static_cast<long>(to.rcVal.left), static_cast<long>(to.rcVal.top),
                    static_cast<long>(to.rcVal.right), static_cast<long>(to.rcVal.bottom));
    else if (KTVariantChangeType(&text, &to, KTVT_STR) == 1)
        std::printf("   %-24s -> kind %2u \"%s\"\n", source, kind, text.pszVal);
}

void VariantConversions() {
    Step("Variants convert between kinds: numbers, their text forms, records");
    PrintConversion("double 2.0/3", CKTVariant(2.0 / 3), KTVT_STR);
    PrintConversion("text \"12abc\"", CKTVariant("12abc"), KTVT_INT);
    PrintConversion("text \"abc\"", CKTVariant("abc"), KTVT_INT);
    PrintConversion("wide text \"3.75e2\"", CKTVariant(KTW("3.75e2")), KTVT_DOUBLE);
    PrintConversion("int -1", CKTVariant(-1), KTVT_ULONG);
    PrintConversion("double -2.5", CKTVariant(-2.5), KTVT_INT);
    PrintConversion("boolean true", CKTVariant(1, KTVT_BOOL), KTVT_WSTR);
    PrintConversion("real rect (0, 0, 9, 9)", CKTVariant(tagRRECT{0, 0, 9, 9}), KTVT_RECT);
    PrintConversion("point (1, 2)", CKTVariant(tagPOINT{1, 2}), KTVT_SIZE);
}

}  // namespace

int main() {
    std::printf("kticore demo host\n");
    ObjectModel();
    Heaps();
    LowMemory();
    Failures();
    Strings();
    Containers();
    Values();
    VariantConversions();
    StoredObjects();
    SharedServices();
    Files();
#if defined(_WIN32)
    CompoundStorages();
    CancellableDocument();
    FileOverFtp();
#endif
    ParameterTrees();
    ProfileFile();
#if defined(_WIN32)
    RegistrySettings();
    SettingsInAStorage();
#endif
    Translation();
    DialogTemplates();
    Threads();
    std::printf("\ndone\n");
    return 0;
}
