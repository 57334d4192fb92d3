// A class that lives in a module of its own, to be created by name and
// stored on streams: an id, a label and an optional child shape. Its stored
// payload is the id, the label as a variant and the child as a stored object.
#pragma once

#include "kticore/objects/Persist.h"

#if defined(_WIN32)
#    define KT_TEST_CLASSES_API extern "C" __declspec(dllexport)
#else
#    define KT_TEST_CLASSES_API extern "C" __attribute__((visibility("default")))
#endif

struct ITestShape : IPersistXStream {
    virtual ULONG GetId() = 0;
    virtual void SetId(ULONG id) = 0;
    virtual const char* GetLabel() = 0;
    virtual void SetLabel(const char* label) = 0;
    // The child with a reference for the caller, or null.
    virtual ITestShape* GetChild() = 0;
    virtual void SetChild(ITestShape* child) = 0;
    // How many times Load ran on this object.
    virtual int GetLoadCount() = 0;

protected:
    ~ITestShape() = default;
};

// The class names that the module exports as factories. An empty shape is a
// shape whose stored payload is empty: it stores and loads nothing.
#define KT_TEST_SHAPE_CLASS "CLSID_TestShape"
#define KT_TEST_EMPTY_CLASS "CLSID_TestEmpty"
#define KT_TEST_REFUSING_CLASS "CLSID_TestRefusing"
#define KT_TEST_THROWING_CLASS "CLSID_TestThrowing"
// What the throwing factory throws, as a CXException.
#define KT_TEST_THROWN_CODE XE_NO_MEMORY
