// What a host that keeps running stands on: the wall clock's alarm and the watcher of files.

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>

#include "adapters/clocks.h"
#include "adapters/file_watcher.h"
#include "adapters/glib_main_queue.h"
#include "adapters/system_alarm.h"
#include "scratch_folder.h"

namespace lumenquest::adapters {
namespace {

using platform::Alarm;
using platform::NSDate;
using Clock = std::chrono::steady_clock;

NSDate Later(NSDate date, double seconds) {
  return NSDate(date.timeIntervalSinceReferenceDate() + seconds);
}

/// Runs the main loop until something holds, five seconds at most.
bool Comes(const std::function<bool()>& happened) {
  const auto end = Clock::now() + std::chrono::seconds(5);
  SystemAlarm tick;
  tick.onRing([&](Alarm::Reason) {});
  GlibMainQueue::runUntil([&] {
    tick.set(Later(SystemClock().now(), 0.02));
    return happened() || Clock::now() > end;
  });
  return happened();
}

TEST(SystemAlarm, RingsAtItsInstantAndAtOnceForOneThatIsOver) {
  // On the machine's clock, and on one that is hours ahead.
  for (const double ahead : {0.0, 7200.0}) {
    const auto now = [&] { return Later(SystemClock().now(), ahead); };
    SystemAlarm alarm(ahead);
    std::vector<double> rings;
    alarm.onRing([&](Alarm::Reason reason) {
      EXPECT_EQ(reason, Alarm::Reason::due);
      rings.push_back(now().timeIntervalSinceReferenceDate());
    });
    alarm.set(Later(now(), 3600.0));
    const NSDate due = Later(now(), 0.15);
    alarm.set(due);
    EXPECT_TRUE(Comes([&] { return rings.size() == 1; }));
    EXPECT_GE(rings[0], due.timeIntervalSinceReferenceDate() - 1e-3);
    alarm.set(NSDate());
    EXPECT_TRUE(Comes([&] { return rings.size() == 2; }));
  }
}

TEST(FileWatcher, TellsWhatHappensToFilesOnceAChange) {
  const testing::ScratchFolder folder;
  const auto file = folder / "watched";
  int changes = 0;
  FileWatcher watcher({file, folder / "other"}, [&] { ++changes; });
  const auto expectOne = [&](const char* what) {
    EXPECT_TRUE(Comes([&] { return changes > 0; })) << what;
    // What comes together is told together.
    const auto end = Clock::now() + std::chrono::milliseconds(500);
    Comes([&] { return Clock::now() > end; });
    EXPECT_EQ(changes, 1) << what;
    changes = 0;
  };
  std::ofstream(file) << "made";
  expectOne("made");
  std::ofstream(file) << "written";
  std::ofstream(folder / "other") << "with another";
  expectOne("written");
  std::ofstream(folder / "new") << "put in its place";
  std::filesystem::rename(folder / "new", file);
  expectOne("replaced");
  std::filesystem::remove(file);
  expectOne("removed");
  // As those who keep their configuration elsewhere do it.
  std::ofstream(folder / "elsewhere") << "kept elsewhere";
  std::filesystem::create_symlink(folder / "elsewhere", file);
  expectOne("linked");
  std::ofstream(folder / "elsewhere") << "written elsewhere";
  expectOne("written through");
  std::filesystem::remove(file);
  expectOne("unlinked");

  // Readers of a database make such files beside it.
  std::ofstream(file).flush();
  const auto end = Clock::now() + std::chrono::milliseconds(800);
  Comes([&] { return Clock::now() > end; });
  EXPECT_EQ(changes, 0);
}

}  // namespace
}  // namespace lumenquest::adapters
