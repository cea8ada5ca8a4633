// First uses by eight threads at once, of what is built, or asked of clock and configuration,
// once. It is a test of what the threads get; whether they race is told by scripts/threads,
// which runs it under a checker.
#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <memory>
#include <thread>

#include "nx21rtms.h"
#include "nxlang.h"
#include "support/strings.h"

namespace {

constexpr unsigned kThreads = 8;

/// Comparisons, hashes and keys of texts, which build a table for every code set and language.
void UseTexts(std::string& out) {
  for (unsigned char codeSet : {1, 2, 3, 4, 253})
    for (unsigned char language = 0; language < 9; ++language) {
      const NxString text = String(u"Stra\u00DFe 12", codeSet, language);
      const NxString pattern = String(u"*r?\u00DF*", codeSet, language);
      unsigned char key[100];
      int error = 0;
      NxTypeMgr mgr(5);
      auto* value = const_cast<NxString*>(&text);
      out += std::to_string(Sign(text.Compare(pattern))) + ',' + std::to_string(text.Find(pattern)) + ',' +
             std::to_string(mgr.Hash(kStringTypeId, 0, value, 1, kFormatMemory, error)) + ',' +
             std::to_string(NxSortKey(kStringTypeId, value, kFormatMemory, 0, 0, key, sizeof key)) + ';';
    }
}

/// Every type, through a manager and records that all threads share.
void UseTypes(NxTypeMgr& mgr, std::string& out) {
  NxString texts[] = {NxString("1"), Wide(u"20")};
  for (char id = 0; id < 40; ++id) {
    NxTypeConvertData record(kStringTypeId, 2, texts, nullptr);
    void* values = mgr.ConvertFrom(id, &record, 2);
    record.mgr = nullptr;  // the texts stay
    const auto size = static_cast<unsigned long>(mgr.DiskLenGet(id, values, 1, 2, 8));
    std::string image(size, 0), copy(size, 0);
    mgr.Store(id, image.data(), values, 1, 2);
    mgr.Translate(id, copy.data(), 2, size, image.data(), 1, size, 2);  // asks the configuration
    NxString printed;
    mgr.PrintToNxString(id, printed, values, nullptr, 1);
    mgr.ScanFromNxString(id, values, texts[1], nullptr, 1);
    mgr.Delete(id, values, 2);
    mgr.Delete(id, mgr.DefaultValue(id, 2, 1), 2);
    mgr.Delete(id, mgr.Create(id, 2), 2);  // asks the clock
    out += image + copy + Text(printed);
  }
}

void UseTheRest(std::string& out) {
  out += std::to_string(NxString::GetAsterisk() + NxString::GetQuestion() + NxString::GetEscape());
  out += std::to_string(NxDateTime::Null().date.year) + Text(NxTypeMgr::GetNullPrintString());
  const char* version = nullptr;
  GetNxTypeMgrInfo(nullptr, nullptr, &version, nullptr, nullptr);
  out += version;
  NxString tooLong("x");
  tooLong.Fill(65000, 'x') += NxString(tooLong);  // asks whether to report
  NxInt64 now;
  GetSystemTimeInMSSinceTheEpoch(now);
  NxIString alpha("stra*e");
  out += std::to_string(alpha == NxIString("Strasse"));
}

TEST(Threads, FirstUsesAtOnce) {
  NxTypeMgr mgr(5);
  NxSetAssertHandler([](const char*, const char*, int) {});
  pthread_barrier_t start;
  pthread_barrier_init(&start, nullptr, kThreads);
  std::array<std::string, kThreads> results;
  std::vector<std::thread> threads;
  for (std::string& result : results)
    threads.emplace_back([&mgr, &start, &result] {
      pthread_barrier_wait(&start);
      UseTheRest(result);
      UseTexts(result);
      UseTypes(mgr, result);
    });
  for (std::thread& thread : threads) thread.join();
  pthread_barrier_destroy(&start);
  for (const std::string& result : results) EXPECT_EQ(result, results[0]);
  std::string alone;
  UseTheRest(alone);
  UseTexts(alone);
  UseTypes(mgr, alone);
  EXPECT_EQ(alone, results[0]);
  NxSetAssertHandler(nullptr);
}

}  // namespace
