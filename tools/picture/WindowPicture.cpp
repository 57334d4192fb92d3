#include "tools/picture/WindowPicture.h"

#include <wincodec.h>

namespace {

constexpr WORD kBitsPerPixel = 32;
constexpr COLORREF kOutlineColour = RGB(255, 0, 0);

// Releases a COM interface at the end of its scope.
template <class Interface>
struct Held {
    Interface* pointer = nullptr;
    ~Held() {
        if (pointer != nullptr)
            pointer->Release();
    }
    Interface* operator->() const { return pointer; }
};

// A top-down 32-bit DIB section holding a copy of the window's pixels.
struct Pixels {
    int width = 0;
    int height = 0;
    void* bits = nullptr;
    HBITMAP bitmap = nullptr;
    ~Pixels() {
        if (bitmap != nullptr)
            DeleteObject(bitmap);
    }
};

void DrawOutlines(HDC dc, const std::vector<RECT>& outlines) {
    HBRUSH brush = CreateSolidBrush(kOutlineColour);
    for (const RECT& outline : outlines)
        FrameRect(dc, &outline, brush);
    DeleteObject(brush);
}

bool CopyPixels(HWND window, const std::vector<RECT>& outlines, Pixels& pixels) {
    RECT frame;
    GetWindowRect(window, &frame);
    pixels.width = frame.right - frame.left;
    pixels.height = frame.bottom - frame.top;
    BITMAPINFO format = {};
    format.bmiHeader.biSize = sizeof format.bmiHeader;
    format.bmiHeader.biWidth = pixels.width;
    format.bmiHeader.biHeight = -pixels.height;  // top-down rows
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = kBitsPerPixel;
    format.bmiHeader.biCompression = BI_RGB;
    HDC windowDc = GetWindowDC(window);
    HDC memoryDc = CreateCompatibleDC(windowDc);
    pixels.bitmap = CreateDIBSection(windowDc, &format, DIB_RGB_COLORS, &pixels.bits, nullptr, 0);
    bool copied = false;
    if (pixels.bitmap != nullptr) {
        HGDIOBJ previous = SelectObject(memoryDc, pixels.bitmap);
        copied = BitBlt(memoryDc, 0, 0, pixels.width, pixels.height, windowDc, 0, 0, SRCCOPY) != 0;
        DrawOutlines(memoryDc, outlines);
        SelectObject(memoryDc, previous);
    }
    DeleteDC(memoryDc);
    ReleaseDC(window, windowDc);
    return copied;
}

HRESULT Encode(const Pixels& pixels, const wchar_t* pngPath) {
    Held<IWICImagingFactory> factory;
    HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                      IID_IWICImagingFactory, reinterpret_cast<void**>(&factory.pointer));
    Held<IWICStream> stream;
    if (SUCCEEDED(result))
        result = factory->CreateStream(&stream.pointer);
    if (SUCCEEDED(result))
        result = stream->InitializeFromFilename(pngPath, GENERIC_WRITE);
    Held<IWICBitmapEncoder> encoder;
    if (SUCCEEDED(result))
        result = factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, &encoder.pointer);
    if (SUCCEEDED(result))
        result = encoder->Initialize(stream.pointer, WICBitmapEncoderNoCache);
    Held<IWICBitmapFrameEncode> frame;
    if (SUCCEEDED(result))
        result = encoder->CreateNewFrame(&frame.pointer, nullptr);
    if (SUCCEEDED(result))
        result = frame->Initialize(nullptr);
    if (SUCCEEDED(result))
        result = frame->SetSize(pixels.width, pixels.height);
    WICPixelFormatGUID format = GUID_WICPixelFormat32bppBGR;
    if (SUCCEEDED(result))
        result = frame->SetPixelFormat(&format);
    const UINT stride = static_cast<UINT>(pixels.width) * (kBitsPerPixel / 8);
    if (SUCCEEDED(result) && !IsEqualGUID(format, GUID_WICPixelFormat32bppBGR))
        result = E_FAIL;  // the encoder would have wanted the pixels converted
    if (SUCCEEDED(result))
        result = frame->WritePixels(static_cast<UINT>(pixels.height), stride, stride * static_cast<UINT>(pixels.height),
                                    static_cast<BYTE*>(pixels.bits));
    if (SUCCEEDED(result))
        result = frame->Commit();
    if (SUCCEEDED(result))
        result = encoder->Commit();
    return result;
}

}  // namespace

bool SaveWindowPicture(HWND window, const wchar_t* pngPath, const std::vector<RECT>& outlines) {
    Pixels pixels;
    if (!CopyPixels(window, outlines, pixels))
        return false;
    const HRESULT initialised = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const bool saved = SUCCEEDED(Encode(pixels, pngPath));
    if (SUCCEEDED(initialised))
        CoUninitialize();
    return saved;
}

void PumpMessages(DWORD milliseconds) {
    constexpr DWORD kPumpStepMilliseconds = 10;
    const ULONGLONG until = GetTickCount64() + milliseconds;
    MSG message;
    while (GetTickCount64() < until) {
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        Sleep(kPumpStepMilliseconds);
    }
}
