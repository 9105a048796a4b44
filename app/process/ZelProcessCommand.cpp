#include "app/process/ZelProcessCommand.h"

#include <sndfile.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/common/ZelDescriptionFile.h"
#include "app/common/ZelNumberWords.h"
#include "dsp/ZelProduct.h"
#include "model/ZelConfig.h"
#include "model/ZelPresets.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr sf_count_t kBlock = 1024;

struct Request {
  std::string in, out, preset, format;
  std::vector<std::pair<std::string, std::string>> sets;  // code name, value text
};

// Thrown for anything the user can fix: one line, exit 2.
struct Refusal {
  std::string message;
};

std::atomic<bool> gInterrupted{false};
extern "C" void onSignal(int) { gInterrupted = true; }

Request parse(int argc, char** argv) {
  Request r;
  std::vector<std::string> positional;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    const auto value = [&]() -> std::string {
      if (i + 1 >= argc) throw Refusal{a + " needs a value"};
      return argv[++i];
    };
    if (a == "--preset") {
      r.preset = value();
    } else if (a == "--format") {
      r.format = value();
      if (r.format != "wav16" && r.format != "wav24" && r.format != "float" && r.format != "flac")
        throw Refusal{"--format is wav16, wav24, float or flac, not \"" + r.format + "\""};
    } else if (a == "--set") {
      const std::string s = value();
      const auto eq = s.find('=');
      if (eq == std::string::npos || eq == 0 || eq + 1 == s.size())
        throw Refusal{"--set takes CODENAME=VALUE, not \"" + s + "\""};
      r.sets.emplace_back(s.substr(0, eq), s.substr(eq + 1));
    } else if (a.size() > 1 && a[0] == '-') {
      throw Refusal{"unknown option " + a};
    } else {
      positional.push_back(a);
    }
  }
  if (positional.size() != 2) throw Refusal{"needs an input and an output file"};
  r.in = positional[0], r.out = positional[1];
  std::error_code ec;
  if (std::filesystem::equivalent(r.in, r.out, ec)) throw Refusal{"the output would overwrite the input"};
  return r;
}

// The program's name in messages: "<slug> process".
std::string me() { return std::string(ZelCurrentProduct().slug) + " process"; }

const ZelParameter* parameterNamed(const ZelConfig& config, const std::string& codeName) {
  for (int pid = 0; pid < ZelCurrentProduct().parameterCount(); ++pid) {
    const ZelParameter* p = config.parameterForPid(pid);
    if (p && p->codesafeName == codeName) return p;
  }
  return nullptr;
}

// Every value the unit takes, by pid: the defaults, the preset, the --sets.
std::vector<float> settings(const ZelConfig& config, const Request& r) {
  const ZelProduct& product = ZelCurrentProduct();
  std::vector<float> values(product.parameters.size());
  for (const ZelUnitParameter& p : product.parameters) values[std::size_t(p.pid)] = p.initial;
  if (!r.preset.empty()) {
    const ZelPresets* presets = config.presets();
    std::optional<unsigned> index;
    if (presets) {
      for (unsigned i = 0; i < presets->stringValues.size() && !index; ++i)
        if (presets->stringValues[i] == r.preset) index = i;
    }
    if (!index) throw Refusal{"no factory preset is named \"" + r.preset + "\""};
    for (const ZelPresetAssignment& a : ZelPresetAssignments(config, *index))
      if (a.parameter->pid >= 0 && a.parameter->pid < product.parameterCount()) values[a.parameter->pid] = a.value;
  }
  for (const auto& [name, text] : r.sets) {
    const ZelParameter* p = parameterNamed(config, name);
    if (!p) throw Refusal{"no parameter has the code name \"" + name + "\""};
    std::optional<double> number = ZelParseNumberWord(text);
    for (std::size_t i = 0; !number && i < p->stringValues.size(); ++i)
      if (p->stringValues[i] == text) number = p->minValue + double(i);
    if (!number || !std::isfinite(*number)) throw Refusal{"--set " + name + " needs a number, not \"" + text + "\""};
    const float v = float(*number);
    const float clamped = std::clamp(v, p->minValue, p->maxValue);
    if (clamped != v)
      std::fprintf(stderr, "%s: warning: %s=%s is outside %g to %g; using %g\n", me().c_str(), name.c_str(),
                   text.c_str(), double(p->minValue), double(p->maxValue), double(clamped));
    if (p->pid >= 0 && p->pid < product.parameterCount()) values[p->pid] = clamped;
  }
  return values;
}

int outputFormat(const std::string& format, int inputFormat) {
  if (format == "wav16") return SF_FORMAT_WAV | SF_FORMAT_PCM_16;
  if (format == "wav24") return SF_FORMAT_WAV | SF_FORMAT_PCM_24;
  if (format == "float") return SF_FORMAT_WAV | SF_FORMAT_FLOAT;
  if (format == "flac") return SF_FORMAT_FLAC | SF_FORMAT_PCM_24;
  return inputFormat;
}

struct SndFileCloser {
  void operator()(SNDFILE* f) const { sf_close(f); }
};
using SndFile = std::unique_ptr<SNDFILE, SndFileCloser>;

double peakDecibels(float peak) { return peak > 0 ? 20 * std::log10(peak) : -INFINITY; }

void drawProgress(sf_count_t done, sf_count_t total) {
  const int width = 40, filled = total > 0 ? int(width * done / total) : width;
  std::fprintf(stderr, "\r[%.*s%*s] %3d%%", filled, "========================================", width - filled, "",
               total > 0 ? int(100 * done / total) : 100);
}

// The whole run; throws Refusal for bad input before OUT's temporary exists.
int run(const Request& r, const ZelConfig& config) {
  if (!ZelCurrentProduct().makeUnit) throw Refusal{"this program was built without a unit"};
  const std::vector<float> values = settings(config, r);

  SF_INFO inInfo{};
  SndFile in(sf_open(r.in.c_str(), SFM_READ, &inInfo));
  if (!in) throw Refusal{"cannot read " + r.in + ": " + sf_strerror(nullptr)};
  if (inInfo.channels < 1 || inInfo.channels > 2)
    throw Refusal{r.in + " has " + std::to_string(inInfo.channels) + " channels; " + std::string(ZelCurrentProduct().name) + " takes one or two"};

  SF_INFO outInfo{};
  outInfo.samplerate = inInfo.samplerate;
  outInfo.channels = inInfo.channels;
  outInfo.format = outputFormat(r.format, inInfo.format);
  if (!sf_format_check(&outInfo))
    throw Refusal{"cannot write " + std::to_string(inInfo.channels) + " channels at " +
                  std::to_string(inInfo.samplerate) + " Hz in that format"};

  const std::filesystem::path outPath(r.out);
  const std::filesystem::path temporary =
      outPath.parent_path() / ("." + outPath.filename().string() + "." + ZelCurrentProduct().slug + "-" + std::to_string(getpid()));
  SndFile out(sf_open(temporary.c_str(), SFM_WRITE, &outInfo));
  if (!out) throw Refusal{"cannot write " + r.out + ": " + sf_strerror(nullptr)};
  // From here on the temporary exists: remove it on any way out but success.
  struct Cleanup {
    const std::filesystem::path& path;
    bool keep = false;
    ~Cleanup() {
      if (!keep) std::remove(path.c_str());
    }
  } cleanup{temporary};
  sf_command(out.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);

  const int channels = inInfo.channels;
  const std::unique_ptr<ZelAudioUnit> made = ZelCurrentProduct().makeUnit(channels, inInfo.samplerate);
  ZelAudioUnit& unit = *made;
  for (int pid = 0; pid < int(values.size()); ++pid) unit.setParameter(pid, values[pid]);

  std::vector<float> interleaved(std::size_t(kBlock * channels)), planar[2], result[2];
  for (int c = 0; c < 2; ++c) planar[c].resize(kBlock), result[c].resize(kBlock);
  const bool terminal = isatty(STDERR_FILENO);
  const sf_count_t total = inInfo.frames;
  const auto started = std::chrono::steady_clock::now();
  float peakIn = 0, peakOut = 0;
  sf_count_t read = 0, written = 0, skip = -1;

  // The unit's latency is known once it has seen its settings: the first
  // `skip` frames out are dropped and as many frames of silence go in at
  // the end, so OUT lines up with IN.
  while (written < total) {
    if (gInterrupted) throw Refusal{"interrupted; " + r.out + " was not written"};
    sf_count_t n = 0;
    if (read < total) {
      n = sf_readf_float(in.get(), interleaved.data(), std::min(kBlock, total - read));
      if (n <= 0) throw Refusal{"cannot read " + r.in + " past frame " + std::to_string(read)};
      read += n;
    } else {
      n = std::min(kBlock, total - written);  // silence until every frame is out
      std::fill(interleaved.begin(), interleaved.end(), 0.0f);
    }
    for (sf_count_t i = 0; i < n; ++i) {
      for (int c = 0; c < channels; ++c) {
        const float x = interleaved[std::size_t(i * channels + c)];
        planar[c][std::size_t(i)] = x;
        if (std::isfinite(x)) peakIn = std::max(peakIn, std::abs(x));
      }
    }
    const float* ins[2] = {planar[0].data(), planar[1].data()};
    float* outs[2] = {result[0].data(), result[1].data()};
    unit.process(ins, outs, std::uint32_t(n));
    if (skip < 0) skip = unit.latency();
    const sf_count_t drop = std::min(skip, n);
    skip -= drop;
    const sf_count_t keep = std::min(n - drop, total - written);
    for (sf_count_t i = 0; i < keep; ++i) {
      for (int c = 0; c < channels; ++c) {
        const float y = result[c][std::size_t(drop + i)];
        interleaved[std::size_t(i * channels + c)] = y;
        peakOut = std::max(peakOut, std::abs(y));
      }
    }
    if (keep > 0 && sf_writef_float(out.get(), interleaved.data(), keep) != keep) {
      std::fprintf(stderr, "%s: cannot write %s: %s\n", me().c_str(), r.out.c_str(), sf_strerror(out.get()));
      return 1;
    }
    written += keep;
    if (terminal && (written % (kBlock * 64) < keep || written == total)) drawProgress(written, total);
  }
  if (terminal) std::fputc('\n', stderr);
  out.reset();  // flushes and closes
  std::error_code ec;
  std::filesystem::rename(temporary, outPath, ec);
  if (ec) {
    std::fprintf(stderr, "%s: cannot write %s: %s\n", me().c_str(), r.out.c_str(), ec.message().c_str());
    return 1;
  }
  cleanup.keep = true;
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  const double audio = double(total) / inInfo.samplerate;
  std::fprintf(stderr, "%lld frames, %d Hz, %d channel%s, peak in %.1f dBFS, peak out %.1f dBFS, %.2f s, %.0fx real time\n",
               static_cast<long long>(total), inInfo.samplerate, channels, channels == 1 ? "" : "s",
               peakDecibels(peakIn), peakDecibels(peakOut), seconds, seconds > 0 ? audio / seconds : 0.0);
  return 0;
}

}  // namespace

int ZelProcessCommand(int argc, char** argv, const char* configPath) {
  try {
    const Request request = parse(argc, argv);
    std::string error;
    std::unique_ptr<ZelConfig> config = ZelLoadDescription(configPath, error);
    if (!config) throw Refusal{std::string("cannot read the description ") + configPath + ": " + error};
    gInterrupted = false;
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    const int status = run(request, *config);
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    return status;
  } catch (const Refusal& refusal) {
    std::fprintf(stderr, "%s: %s\n", me().c_str(), refusal.message.c_str());
    return 2;
  }
}

ZEL_NAMESPACE_END
