// Values written and read through the profile-file tree, in a file of 1,000
// keys, against the platform's profile functions doing the same on the same
// file in the same run. The platform sets the pace: this is a figure, with no
// target.
#include <windows.h>

#include <cstdio>
#include <string>

#include "bench/harness/TimingHarness.h"
#include "kticore/params/IniFileParam.h"

namespace {

constexpr int kKeys = 1000;
constexpr long kIterations = 2000;
constexpr int kRounds = 3;

std::string KeyName(long i) { return "k" + std::to_string(i % kKeys); }

void PrintFigure(const char* name, const char* peer, double ours, double theirs) {
    kt::bench::PrintRatio(name, peer, ours, theirs);
    std::printf("%-28s %.0f values/s (platform %.0f values/s)\n", "", 1e9 / ours, 1e9 / theirs);
}

}  // namespace

int main() {
    wchar_t directory[MAX_PATH];
    GetTempPathW(MAX_PATH, directory);
    const std::wstring file = std::wstring(directory) + L"kt_profile_bench.ini";
    char narrow[MAX_PATH * 2];
    WideCharToMultiByte(CP_ACP, 0, file.c_str(), -1, narrow, sizeof narrow, nullptr, nullptr);
    DeleteFileW(file.c_str());

    IParam* root = new_IParamIniFile(file.c_str());
    for (int i = 0; i < kKeys; ++i) {
        CKTVariant value(i);
        root->SetValue(KeyName(i).c_str(), &value);
    }

    long next = 0;
    kt::bench::PrintRatioHeader();
    const double write = kt::bench::NanosecondsPerCall(
        [&] {
            CKTVariant value(static_cast<int>(next));
            root->SetValue(KeyName(next++).c_str(), &value);
        },
        kIterations, kRounds);
    const double platformWrite = kt::bench::NanosecondsPerCall(
        [&] {
            const std::string text = "i" + std::to_string(next);
            WritePrivateProfileStringA("\\", KeyName(next++).c_str(), text.c_str(), narrow);
        },
        kIterations, kRounds);
    PrintFigure("SetValue/1000 keys", "WritePrivate...", write, platformWrite);

    const double read = kt::bench::NanosecondsPerCall(
        [&] {
            CKTVariant value;
            root->GetValue(KeyName(next++).c_str(), &value);
        },
        kIterations, kRounds);
    char buffer[64000];
    const double platformRead = kt::bench::NanosecondsPerCall(
        [&] { GetPrivateProfileStringA("\\", KeyName(next++).c_str(), "", buffer, sizeof buffer, narrow); },
        kIterations, kRounds);
    PrintFigure("GetValue/1000 keys", "GetPrivate...", read, platformRead);

    root->Release();
    DeleteFileW(file.c_str());
    return 0;
}
