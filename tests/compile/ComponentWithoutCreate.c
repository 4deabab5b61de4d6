/* A library that has the component's name but not its creation function,
   for the loader's check. Plain C, so the interface header is compiled as C. */
#include "compile/KvCompInterface.h"

KVCOMP_EXPORT KvCompiler* KvCompMake(void) { return 0; }
