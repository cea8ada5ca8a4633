// Multibyte texts: there are none, see the header.

#include "nxmbchar.h"

char* NxMBStrCpy(unsigned char, char*, const char*) { return nullptr; }
unsigned int NxMBStrLen(unsigned char, const char*) { return 0; }
int NxMBStrCmp(unsigned char, const char*, const char*) { return 0; }
char* NxMBStrNCpy(unsigned char, char*, const char*, unsigned int) { return nullptr; }
int NxMBStrNCmp(unsigned char, const char*, const char*, unsigned int) { return 0; }

int NxMBStrToI(unsigned char, const char*) { return 0; }
long NxMBStrToL(unsigned char, const char*, char**, int) { return 0; }
double NxMBStrToD(unsigned char, const char*, char**) { return 0.0; }

char* NxMBStrInc(unsigned char, const char*) { return nullptr; }
char* NxMBStrDec(unsigned char, const char*, const char*) { return nullptr; }
unsigned short NxMBStrIdx(unsigned char, const char*, int) { return 0; }
unsigned short NxMBStrNext(unsigned char, const char**) { return 0; }
unsigned short NxMBStrPrev(unsigned char, const char**) { return 0; }
