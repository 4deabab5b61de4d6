/*
 * The compiler component's interface: a shared library, libKvComp141.so,
 * that exports one C function which makes the compiler object. The object
 * starts with a pointer to a table of sixteen operations in a fixed order.
 * Plain C, so that a component can be written in any language that can
 * export a C function. KvCompInterface.md tells how to build one.
 */
#ifndef KAVLIN_KVCOMPINTERFACE_H
#define KAVLIN_KVCOMPINTERFACE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A Boolean crosses as 16 bits: True is -1, False is 0. */
typedef int16_t KvBool;
#define KVCOMP_TRUE ((KvBool)-1)
#define KVCOMP_FALSE ((KvBool)0)

/* Texts cross as UTF-16 code units ending in a 0 unit. */
typedef uint16_t KvChar;

/* The file the system loads, and the function it looks for in it. */
#define KVCOMP_LIBRARY_NAME "libKvComp141.so"
#define KVCOMP_CREATE_FUNCTION "KvCompCreate"

typedef struct KvCompiler KvCompiler;

/*
 * The sixteen operations in slot order. Every call is synchronous. "out"
 * parameters are written through the pointer. A text that the component
 * hands out stays valid until the next call on the same object.
 */
typedef struct KvCompilerOps {
    /* 1: the install directory; Success False if its libraries are missing. */
    void (*SetLibraryPath)(KvCompiler* Self, const KvChar* Path, KvBool* Success);
    /* 2 */
    void (*GetVersion)(KvCompiler* Self, int16_t* Major, int16_t* Minor, int16_t* Revision);
    /* 3: bytes of a variable-length string, 1 to 64. */
    void (*SetStringSize)(KvCompiler* Self, int16_t Size, KvBool* Success);
    /* 4: True for the KV-20 and KV-30, False for the KV-10. */
    void (*SetChipFamilyFlag)(KvCompiler* Self, KvBool Value);
    /* 5 */
    void (*SetStrictSyntax)(KvCompiler* Self, KvBool Value);
    /* 6: the middle of the editor window in twips; Flag is always True. */
    void (*SetWindowCenter)(KvCompiler* Self, KvBool Flag, int32_t CenterY, int32_t CenterX);
    /* 7: 1 KV-10, 2 KV-20, 3 KV-30. */
    void (*SetChipType)(KvCompiler* Self, int16_t ChipType);
    /* 8 */
    void (*SetOptimize)(KvCompiler* Self, KvBool Value);
    /* 9 to 11: the sizes of the last good compile, in bytes. */
    void (*GetRamSize)(KvCompiler* Self, int32_t* Size);
    void (*GetCodeSize)(KvCompiler* Self, int32_t* Size);
    void (*GetPersistentSize)(KvCompiler* Self, int32_t* Size);
    /* 12: not used; never called, may be null. */
    void (*Reserved12)(KvCompiler* Self);
    /* 13 to 15: first and last address of each memory the program may use. */
    void (*SetRamBoundaries)(KvCompiler* Self, int32_t Low, int32_t High, KvBool* Success);
    void (*SetCodeBoundaries)(KvCompiler* Self, int32_t Low, int32_t High, KvBool* Success);
    void (*SetPersistentBoundaries)(KvCompiler* Self, int32_t Low, int32_t High, KvBool* Success);
    /* 16: compiles the project file. Note that the end position comes first. */
    void (*RunCompile)(KvCompiler* Self, const KvChar* ProjectFilename, KvBool* Success,
                       int16_t* ModuleNumber, int16_t* LineNumber, int16_t* ColumnNumber,
                       int32_t* EndPosition, int32_t* StartPosition, int32_t* ErrorNumber,
                       const KvChar** ErrorDescription, const KvChar** WarningDescription);
} KvCompilerOps;

/* The object: its first member is the table. A component puts its own state behind it. */
struct KvCompiler {
    const KvCompilerOps* Ops;
};

/*
 * The exported creation function, named by KVCOMP_CREATE_FUNCTION. Returns a
 * new object, or null if none can be made. The system makes one object and
 * keeps it until the process ends; it never destroys it. A component defines
 * it; the declaration here exports it and checks its type.
 */
#define KVCOMP_EXPORT __attribute__((visibility("default")))
typedef KvCompiler* (*KvCompCreateFunction)(void);
KVCOMP_EXPORT KvCompiler* KvCompCreate(void);

#ifdef __cplusplus
}
#endif

#endif
