// Temporary: slot functions whose own files are still to come. Whoever brings one
// deletes its line here.

#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "nxtypfmt.h"
#include "nxtyphash.h"


// NxIString.
void* NxIStringCreate(unsigned long) { return nullptr; }
int NxIStringDelete(void*, unsigned long) { return 0; }
void NxIStringConstructor(void*, unsigned long, unsigned long) {}
void NxIStringDestructor(void*, unsigned long, unsigned long) {}
void NxIStringAssignment(void*, void*, unsigned long, int) {}
void NxIStringCopy(void*, void*, unsigned long, int) {}
void* NxIStringDefaultValue(unsigned long, int) { return nullptr; }
int NxIStringStore(void*, const void*, unsigned char, unsigned long) { return 0; }
int NxIStringLoad(void*, const void*, unsigned char, unsigned long) { return 0; }
int NxIStringNullSizeGet(unsigned long) { return 0; }
int NxIStringSizeGet(const void*, unsigned char, unsigned char, unsigned long) { return 0; }
int NxIStringSizeGetFromMemFile(MemFile*, unsigned char, unsigned long) { return 0; }
NxTypeConvertData* NxIStringConvertToNxString(void*, unsigned long) { return nullptr; }
void* NxIStringConvertFromNxString(NxTypeConvertData*, unsigned long) { return nullptr; }
int NxIStringTranslate(void*, unsigned char, unsigned long, void*, unsigned char, unsigned long,
                       unsigned long) {
  return 0;
}
long NxIStringCompare(unsigned char, unsigned long, void*, unsigned long, void*, unsigned short,
                      unsigned long, int& error) {
  error = 0;
  return 0;
}
float NxIStringEvalAndBound(NxIdxBounds*, unsigned short&, void*, unsigned char, unsigned long,
                            NxIdxBounds*) {
  return 0;
}
unsigned long NxIStringHash(unsigned char, unsigned long, void*, unsigned long, int& error) {
  error = 0;
  return 0;
}

// NxCaseIString.
void* NxCaseIStringCreate(unsigned long) { return nullptr; }
int NxCaseIStringDelete(void*, unsigned long) { return 0; }
void NxCaseIStringConstructor(void*, unsigned long, unsigned long) {}
void NxCaseIStringDestructor(void*, unsigned long, unsigned long) {}
void NxCaseIStringAssignment(void*, void*, unsigned long, int) {}
void NxCaseIStringCopy(void*, void*, unsigned long, int) {}
void* NxCaseIStringDefaultValue(unsigned long, int) { return nullptr; }
int NxCaseIStringStore(void*, const void*, unsigned char, unsigned long) { return 0; }
int NxCaseIStringLoad(void*, const void*, unsigned char, unsigned long) { return 0; }
int NxCaseIStringNullSizeGet(unsigned long) { return 0; }
int NxCaseIStringSizeGet(const void*, unsigned char, unsigned char, unsigned long) { return 0; }
int NxCaseIStringSizeGetFromMemFile(MemFile*, unsigned char, unsigned long) { return 0; }
NxTypeConvertData* NxCaseIStringConvertToNxString(void*, unsigned long) { return nullptr; }
void* NxCaseIStringConvertFromNxString(NxTypeConvertData*, unsigned long) { return nullptr; }
int NxCaseIStringTranslate(void*, unsigned char, unsigned long, void*, unsigned char, unsigned long,
                           unsigned long) {
  return 0;
}
long NxCaseIStringCompare(unsigned char, unsigned long, void*, unsigned long, void*, unsigned short,
                          unsigned long, int& error) {
  error = 0;
  return 0;
}
float NxCaseIStringEvalAndBound(NxIdxBounds*, unsigned short&, void*, unsigned char, unsigned long,
                                NxIdxBounds*) {
  return 0;
}
unsigned long NxCaseIStringHash(unsigned char, unsigned long, void*, unsigned long, int& error) {
  error = 0;
  return 0;
}

