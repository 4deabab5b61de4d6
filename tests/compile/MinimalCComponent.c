/* The smallest compiler component, in plain C, built from the interface
   header and its description alone: it reports the right version, accepts
   every setting, and "compiles" any project into an empty program image and
   symbol map beside the project file. It shows that a component maker needs
   nothing of this system but the header. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "compile/KvCompInterface.h"

typedef struct {
    KvCompiler Base; /* first: the system sees only this */
    int32_t CodeSize;
} MinimalCompiler;

static const KvChar NoText[] = {0};

static void Accept(KvBool* Success) { *Success = KVCOMP_TRUE; }
static void SetLibraryPath(KvCompiler* Self, const KvChar* Path, KvBool* Success) {
    (void)Self;
    (void)Path;
    Accept(Success);
}
static void GetVersion(KvCompiler* Self, int16_t* Major, int16_t* Minor, int16_t* Revision) {
    (void)Self;
    *Major = 2;
    *Minor = 0;
    *Revision = 24;
}
static void SetStringSize(KvCompiler* Self, int16_t Size, KvBool* Success) {
    (void)Self;
    *Success = (Size >= 1 && Size <= 64) ? KVCOMP_TRUE : KVCOMP_FALSE;
}
static void SetFlag(KvCompiler* Self, KvBool Value) {
    (void)Self;
    (void)Value;
}
static void SetWindowCenter(KvCompiler* Self, KvBool Flag, int32_t CenterY, int32_t CenterX) {
    (void)Self;
    (void)Flag;
    (void)CenterY;
    (void)CenterX;
}
static void SetChipType(KvCompiler* Self, int16_t ChipType) {
    (void)Self;
    (void)ChipType;
}
static void GetZero(KvCompiler* Self, int32_t* Size) {
    (void)Self;
    *Size = 0;
}
static void GetCodeSize(KvCompiler* Self, int32_t* Size) {
    *Size = ((MinimalCompiler*)Self)->CodeSize;
}
static void SetBoundaries(KvCompiler* Self, int32_t Low, int32_t High, KvBool* Success) {
    (void)Self;
    *Success = Low <= High ? KVCOMP_TRUE : KVCOMP_FALSE;
}

/* Writes an empty file named like the project, with another extension.
   The name comes as UTF-16; this component takes ASCII names only. */
static int WriteBeside(const KvChar* ProjectFilename, const char* Extension) {
    char Name[4096];
    size_t Length = 0;
    while (ProjectFilename[Length] != 0 && Length < sizeof Name - 8) {
        if (ProjectFilename[Length] > 127) {
            return 0;
        }
        Name[Length] = (char)ProjectFilename[Length];
        ++Length;
    }
    Name[Length] = 0;
    char* Dot = strrchr(Name, '.');
    if (Dot == NULL) {
        return 0;
    }
    strcpy(Dot + 1, Extension);
    FILE* File = fopen(Name, "wb");
    if (File == NULL) {
        return 0;
    }
    fclose(File);
    return 1;
}

static void RunCompile(KvCompiler* Self, const KvChar* ProjectFilename, KvBool* Success,
                       int16_t* ModuleNumber, int16_t* LineNumber, int16_t* ColumnNumber,
                       int32_t* EndPosition, int32_t* StartPosition, int32_t* ErrorNumber,
                       const KvChar** ErrorDescription, const KvChar** WarningDescription) {
    static const KvChar CannotWrite[] = {'C', 'a', 'n', 'n', 'o', 't', ' ',
                                         'w', 'r', 'i', 't', 'e', 0};
    const int Written = WriteBeside(ProjectFilename, "kvb") && WriteBeside(ProjectFilename, "kvm");
    ((MinimalCompiler*)Self)->CodeSize = 0;
    *Success = Written ? KVCOMP_TRUE : KVCOMP_FALSE;
    *ModuleNumber = Written ? 0 : 1;
    *LineNumber = 0;
    *ColumnNumber = 0;
    *EndPosition = 0;
    *StartPosition = 0;
    *ErrorNumber = Written ? 0 : 1;
    *ErrorDescription = Written ? NoText : CannotWrite;
    *WarningDescription = NoText;
}

static const KvCompilerOps Operations = {
    SetLibraryPath, GetVersion,    SetStringSize, SetFlag,     SetFlag, SetWindowCenter,
    SetChipType,    SetFlag,       GetZero,       GetCodeSize, GetZero, NULL,
    SetBoundaries,  SetBoundaries, SetBoundaries, RunCompile,
};

KvCompiler* KvCompCreate(void) {
    MinimalCompiler* Compiler = calloc(1, sizeof *Compiler);
    if (Compiler != NULL) {
        Compiler->Base.Ops = &Operations;
    }
    return (KvCompiler*)Compiler;
}
