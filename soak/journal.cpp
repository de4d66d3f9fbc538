#include "soak/journal.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace lotrix::soak {

namespace {

struct Event {
  std::int64_t at = 0;  // milliseconds
  std::string kind;
  int serial = 0;
  std::string state;
  std::string error;
};

std::vector<Event> ReadJournal(const std::string& file) {
  std::vector<Event> events;
  std::ifstream journal(file);
  for (std::string line; std::getline(journal, line);) {
    Event event;
    std::istringstream words(line);
    words >> event.at >> event.kind >> event.serial >> event.state;
    std::getline(words >> std::ws, event.error);
    events.push_back(std::move(event));
  }
  return events;
}

struct Rows {
  std::map<int, int> times;  // how often each serial is there
  std::set<int> keys;
  int keysTwice = 0;
};

Rows ReadRows(const std::string& file) {
  Rows rows;
  std::ifstream in(file);
  int key = 0;
  for (int serial = 0; in >> serial >> key;) {
    ++rows.times[serial];
    if (!rows.keys.insert(key).second) ++rows.keysTwice;
  }
  return rows;
}

struct Tally {
  int done = 0;
  int doubt = 0;
  int doubtThere = 0;
  int unsent = 0;
  std::set<int> tried;
};

// Each write has one answer, and the rows that are there are those that the answer
// allows.
void CheckWrites(const std::string& file, const std::vector<Event>& events, const Rows& rows,
                 Tally& tally, Checks& checks) {
  Expect(checks, !events.empty(), file + " is empty");
  bool isOpen = false;  // a write waits for its answer
  int serial = 0;
  for (const Event& event : events) {
    const std::string what = file + ": " + event.kind + ' ' + std::to_string(event.serial) + ' ' +
                             event.state + ' ' + event.error;
    if (event.kind == "try") {
      Expect(checks, !isOpen, what + " before the last write was answered");
      isOpen = true;
      serial = event.serial;
      Expect(checks, tally.tried.insert(serial).second, what + " again");
      continue;
    }
    Expect(checks, isOpen && event.serial == serial, what + " answers nothing");
    isOpen = false;
    const auto found = rows.times.find(event.serial);
    const int times = found == rows.times.end() ? 0 : found->second;
    const std::string there = what + ", its row is there " + std::to_string(times) + " times";
    if (event.kind == "done") {
      ++tally.done;
      Expect(checks, times == 1, there);
      continue;
    }
    Expect(checks, event.kind == "doubt" || event.kind == "unsent", what);
    Expect(checks, event.state == "closed", what + ", but the connection is not closed");
    if (event.kind == "doubt") {
      ++tally.doubt;
      tally.doubtThere += times;
      Expect(checks, times <= 1, there);
    } else {
      ++tally.unsent;
      Expect(checks, times == 0, there);
    }
  }
  Expect(checks, !isOpen, file + ": the last write was not answered");
}

// How long after the loss the writer's first row was done that it began behind the
// loss; nothing when it never went on.
std::int64_t WentOnAfter(const std::vector<Event>& events, std::int64_t lostAt) {
  constexpr std::int64_t kNever = 1'000'000;
  std::int64_t triedAt = 0;
  bool sawFailure = false;
  for (const Event& event : events) {
    if (event.kind == "try") {
      triedAt = event.at;
    } else if (event.kind != "done") {
      sawFailure = true;
    } else if (sawFailure && triedAt > lostAt) {
      return event.at - lostAt;
    }
  }
  return kNever;
}

}  // namespace

void CheckJournals(const std::string& rowsFile, std::int64_t lostAt,
                   const std::vector<std::string>& earlierJournals,
                   const std::vector<std::string>& lastJournals, Checks& checks) {
  constexpr std::int64_t kMostMilliseconds = 10'000;
  const Rows rows = ReadRows(rowsFile);
  Tally earlier;
  for (const std::string& file : earlierJournals) {
    CheckWrites(file, ReadJournal(file), rows, earlier, checks);
  }
  Tally tally;
  tally.tried = earlier.tried;
  std::int64_t slowest = 0;
  for (const std::string& file : lastJournals) {
    const std::vector<Event> events = ReadJournal(file);
    CheckWrites(file, events, rows, tally, checks);
    const std::int64_t wentOn = WentOnAfter(events, lostAt);
    Expect(checks, wentOn <= kMostMilliseconds,
           file + ": went on " + std::to_string(wentOn) + " ms after the loss");
    slowest = std::max(slowest, wentOn);
  }
  Expect(checks, tally.done > 0 && tally.doubt + tally.unsent > 0,
         "nothing was done, or nothing was lost");
  for (const auto& [serial, times] : rows.times) {
    Expect(checks, tally.tried.count(serial) == 1,
           "a row " + std::to_string(serial) + " that nobody wrote");
  }
  Expect(checks, rows.keysTwice == 0, std::to_string(rows.keysTwice) + " keys are there twice");
  std::printf(
      "  %d rows done and there once, %d in doubt (%d of them there), %d not sent; all writers "
      "went on within %.1f s\n",
      tally.done, tally.doubt, tally.doubtThere, tally.unsent,
      static_cast<double>(slowest) / 1000.0);
}

}  // namespace lotrix::soak
