#include "CommandRunner.h"

#include <OpenImageIO/imageio.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>

namespace vantorel::cli {

std::vector<nlohmann::json> CommandResult::lines() const {
  std::vector<nlohmann::json> parsed;
  std::istringstream stream(out);
  for (std::string line; std::getline(stream, line);) {
    parsed.push_back(nlohmann::json::parse(line));
  }
  return parsed;
}

CommandResult run(const TestFolder& folder, const std::string& arguments, const std::string& before,
                  const std::string& command_file) {
  // Beside the folder, so that what is in it is the command's alone.
  const std::string out = folder.path() + ".out";
  const std::string err = folder.path() + ".err";
  // Redirections first, so that arguments may redirect once more.
  const std::string command =
      "cd '" + folder.path() + "'; " + before + " >'" + out + "' 2>'" + err + "' '" + command_file + "' " + arguments;
  const int status = std::system(command.c_str());
  CommandResult result{WIFEXITED(status) ? WEXITSTATUS(status) : -1, contents(out), contents(err)};
  std::filesystem::remove(out);
  std::filesystem::remove(err);
  return result;
}

std::string runInTerminal(const TestFolder& folder, const std::string& arguments, unsigned short columns) {
  const std::string command = "cd '" + folder.path() + "'; exec '" VANTOREL_COMMAND "' " + arguments;
  const winsize size{24, columns, 0, 0};
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
  if (child == 0) {
    execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    _exit(127);
  }
  std::string text;
  char part[4096];
  // At the end of the other side the terminal gives an error.
  for (ssize_t size_read = 0; (size_read = read(terminal, part, sizeof part)) > 0;) {
    text.append(part, static_cast<std::size_t>(size_read));
  }
  close(terminal);
  waitpid(child, nullptr, 0);
  return text;
}

CommandResult runWell(const TestFolder& folder, const std::string& arguments) {
  CommandResult result = run(folder, arguments);
  EXPECT_EQ(result.code, 0) << arguments << "\n" << result.err;
  EXPECT_EQ(result.err, "") << arguments;
  return result;
}

FolderWithCard::FolderWithCard(const std::string& size) {
  runWell(*this, "testcard -o card.png --size " + size);
}

void expectRefused(const TestFolder& folder, const std::vector<BadCall>& calls) {
  const std::size_t before = folder.count();
  for (const BadCall& call : calls) {
    const CommandResult result = run(folder, call.arguments, call.before);
    const std::string told = call.before + call.arguments + "\n" + result.err;
    EXPECT_EQ(result.code, call.code) << told;
    EXPECT_EQ(result.err.rfind("vantorel: ", 0), 0u) << told;
    EXPECT_NE(result.err.find(call.message), std::string::npos) << told;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << told;
    EXPECT_EQ(folder.count(), before) << call.arguments << " left something behind";
  }
}

double difference(const std::string& first, const std::string& second) {
  const auto a = OIIO::ImageInput::open(first);
  const auto b = OIIO::ImageInput::open(second);
  if (!a || !b || a->spec().width != b->spec().width || a->spec().height != b->spec().height ||
      a->spec().nchannels != b->spec().nchannels) {
    return 1.0;
  }
  const int channels = a->spec().nchannels;
  std::vector<float> as(a->spec().image_pixels() * static_cast<std::size_t>(channels));
  std::vector<float> bs(as.size());
  if (!a->read_image(0, 0, 0, channels, OIIO::TypeDesc::FLOAT, as.data()) ||
      !b->read_image(0, 0, 0, channels, OIIO::TypeDesc::FLOAT, bs.data())) {
    return 1.0;
  }
  // Reading the same file twice can differ in a float's last bits; a step of 16 bits is fifteen times this.
  constexpr double kReadingNoise = 1e-6;
  double sum = 0.0;
  for (std::size_t i = 0; i < as.size(); ++i) {
    const double step = std::abs(double{as[i]} - double{bs[i]});
    sum += step <= kReadingNoise ? 0.0 : step * step;
  }
  return std::sqrt(sum / static_cast<double>(as.size()));
}

}  // namespace vantorel::cli
