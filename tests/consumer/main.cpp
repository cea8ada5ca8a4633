// A user's program: one header, the type manager and a string.

#include <nx21rtms.h>

#include <cstdio>
#include <cstring>

namespace {

int failures = 0;

void Expect(bool condition, const char* what) {
  if (condition) return;
  std::printf("failed: %s\n", what);
  ++failures;
}

void StoreALong(NxTypeMgr& manager) {
  char id = -1;
  Expect(manager.Name2NxTypeId("long", id) == 0 && id == 2, "the name long gives type 2");
  long value = 0x01020304;
  unsigned char image[4] = {};
  Expect(manager.Store(id, image, &value, 2, 1) == 4, "a long is stored in four bytes");
  Expect(std::memcmp(image, "\1\2\3\4", 4) == 0, "format code 2 puts the most significant byte first");
}

void StoreAString(NxTypeMgr& manager) {
  NxString word("Fjord");
  unsigned char image[32] = {};
  const int bytes = manager.Store(11, image, &word, 1, 1);
  Expect(bytes == 11, "five characters are stored in eleven bytes");
  Expect(std::memcmp(image + 4, "Fjord\0\xFF", 7) == 0, "the image holds the text and its trailer");
  NxString back;
  Expect(manager.Load(11, &back, image, 1, 1) == bytes, "loading consumes what storing wrote");
  Expect(std::strcmp(back.StrGet(), "Fjord") == 0, "the text comes back");
}

/// Position independent or not, a program and the library mean the same functions and data.
void NameSlots(NxTypeMgr& manager) {
  Expect(manager.table == NxNewtypetab && &NxString::EmptyString() == &__theEmptyString,
         "the library's data are those that a program names");
  Expect(manager.CmpFuncPtrGet(2) == LongCompare && manager.StorePtrGet(11) == StringStore &&
             manager.LoadPtrGet(26) == Int64Load && NxStringTab.SetNull == NxStringSetNull &&
             NxCharTab.Create == CharCreate && NxIllegalTab.Hash == NxIllegalHash,
         "the records hold the functions that a program names");
  manager.ExchangePrintToNxStringFunc(0, CharPrintToNxString);
  char chars[] = "ab";
  NxString out;
  Expect(std::strcmp(manager.PrintToNxString(0, out, chars, nullptr, 2).StrGet(), "ab") == 0,
         "a print function that is put back serves as before");
}

}  // namespace

int main() {
  Expect(NxCheckDll(0) == 0, "the libraries fit each other");
  ___NxTypemgrContext(1);
  NxTypeMgr manager(5);
  StoreALong(manager);
  StoreAString(manager);
  NameSlots(manager);
  ___NxTypemgrContext(0);
  std::printf("consumer: %s\n", failures == 0 ? "all well" : "failures");
  return failures == 0 ? 0 : 1;
}
