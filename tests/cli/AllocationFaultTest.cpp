// Commands for which one allocation fails: they say so, or do without and write the same files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "CommandRunner.h"

namespace vantorel::cli {
namespace {

using Files = std::map<std::string, std::string>;

const std::string kPreloaded = "LD_PRELOAD='" VANTOREL_ALLOCATION_SHIM "' ";
// Of each command's places this many are tried; VANTOREL_EVERY_PLACE=1 tries all.
constexpr std::size_t kSample = 10;

constexpr int kTimedOut = 124;

// Where something is allocated: the calls that lead to it, as a hash, and the first of its allocations.
struct Place {
  std::string calls;
  long allocation = 0;
};

class AllocationFaults : public ::testing::Test {
 protected:
  // Lets one allocation fail at each place that the command comes to and none before it did.
  void expectToldOrDoneWithout(const std::string& arguments) {
    const std::vector<Place> places = newPlacesOf(arguments);
    const std::size_t step = std::getenv("VANTOREL_EVERY_PLACE") != nullptr ? 1 : places.size() / kSample + 1;
    int told = 0;
    int while_loading = 0;
    int deviations = 0;
    for (std::size_t i = 0; i < places.size(); i += step) {
      const CommandResult result = runFailing(arguments, places[i]);
      const std::string fault = faultOf(result);
      EXPECT_EQ(fault, "") << arguments << ", allocation " << places[i].allocation << "\n"
                           << result.err << contents(stackFile());
      told += isTold(result) ? 1 : 0;
      while_loading += result.code != 0 && !isTold(result) && isLoading() ? 1 : 0;
      deviations += fault.empty() ? 0 : 1;
    }
    writeAll(whole_);
    EXPECT_GT(told, 0) << arguments;
    std::cout << arguments << ": " << places.size() << " places, " << (places.size() + step - 1) / step << " tried, "
              << told << " told, " << while_loading << " ended while libraries were loaded, " << deviations
              << " deviations" << std::endl;
  }

  void write(const std::string& name, const std::string& text) const { folder_.write(name, text); }
  void prepare(const std::string& arguments) const { runWell(folder_, arguments); }
  ~AllocationFaults() override { std::filesystem::remove(stackFile()); }

 private:
  std::string stackFile() const { return folder_.path() + ".stack"; }

  static bool isTold(const CommandResult& result) {
    return (result.code == 1 || result.code == 3) && result.err.rfind("vantorel: ", 0) == 0;
  }
  // The dynamic loader, and some libraries as it loads them, end a process that lacks memory.
  bool isLoading() const { return contents(stackFile()).find("/ld-linux") != std::string::npos; }

  Files files() const {
    Files found;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      found[entry.path().filename()] = contents(entry.path());
    }
    return found;
  }

  // Runs it whole. Its files are looked for from then on, and before each run an older one takes the place of each.
  std::vector<Place> newPlacesOf(const std::string& arguments) {
    older_ = files();
    EXPECT_EQ(run(folder_, arguments).code, 0) << arguments;
    whole_ = files();
    for (const auto& [name, bytes] : whole_) {
      older_.try_emplace(name, "an older file");
    }
    writeAll(older_);
    const std::string list = folder_.path() + ".places";
    run(folder_, arguments, "VANTOREL_ALLOCATION_PLACES='" + list + "' " + kPreloaded);
    std::vector<Place> places;
    std::istringstream lines(contents(list));
    std::filesystem::remove(list);
    for (Place place; lines >> place.calls >> place.allocation;) {
      if (seen_.insert(place.calls).second) {
        places.push_back(place);
      }
    }
    EXPECT_FALSE(places.empty());
    std::ranges::sort(places, {}, &Place::allocation);
    return places;
  }

  void writeAll(const Files& files) const {
    for (const auto& [name, bytes] : files) {
      write(name, bytes);
    }
  }

  CommandResult runFailing(const std::string& arguments, const Place& place) const {
    writeAll(older_);
    std::filesystem::remove(stackFile());
    return run(folder_, arguments,
               "VANTOREL_FAILING_ALLOCATION=" + std::to_string(place.allocation) + " VANTOREL_FAILING_STACK='" +
                   stackFile() + "' " + kPreloaded + "timeout 60");
  }

  // What is wrong with the way in which it ended, if anything is.
  std::string faultOf(const CommandResult& result) const {
    const Files found = files();
    if (result.code == 0) {
      return found == whole_ ? "" : "ends well with other files";
    }
    if (result.code == kTimedOut) {
      return "does not end";
    }
    if (!isTold(result) && !isLoading()) {
      return "exit code " + std::to_string(result.code) + " without a message";
    }
    for (const auto& [name, bytes] : found) {
      if (!whole_.contains(name)) {
        // Where the dynamic loader ends the process, its temporary file is left to the next run, which removes it.
        if (!isTold(result) && name.starts_with('.')) {
          continue;
        }
        return name + " is left";
      }
      if (bytes != whole_.at(name) && bytes != older_.at(name)) {
        return name + " is half written";
      }
    }
    return std::ranges::all_of(whole_, [&](const auto& file) { return found.contains(file.first); }) ? ""
                                                                                                     : "a file is lost";
  }

  const TestFolder folder_;
  std::set<std::string> seen_;
  Files older_;
  Files whole_;
};

TEST_F(AllocationFaults, OneAtEachPlaceIsToldOrDoneWithout) {
  prepare("testcard -o card.png --size 24x16");
  prepare("testcard -o plate.png --size 32x24");
  write("track.csv", "frame,ulx,uly,urx,ury,llx,lly,lrx,lry\n1,0,0,24,0,0,16,24,16\n2,1,1,20,2,0,16,24,16\n");
  for (const char* const arguments :
       {"render card.png -o out.png --over plate.png --ul 5,3 --ur 20,1 --no-progress --threads 1",
        "render card.png -o out.jpg --over plate.png --no-progress --threads 1",
        "render card.png -o out.exr --no-progress --threads 1",
        "render out.exr -o out.tif --quality best --no-progress --threads 1",
        "render card.png -o out.#.png --corners track.csv --frames 1-3 --no-progress --threads 1",
        "corners track.csv -o track.json", "info", "testcard -o other.png --size 9x9"}) {
    expectToldOrDoneWithout(arguments);
  }
}

}  // namespace
}  // namespace vantorel::cli
