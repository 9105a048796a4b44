// A JACK test client: plays a 100 Hz and a 5 kHz sine (each at -12 dBFS)
// into the ports named, records the port named, and measures the gain of
// each tone once the signal has settled. With --expect it runs the same
// signal through the audio unit offline, set as given, and checks that the
// recording's gains match the unit's.
//
//   zel-jack-probe --to PORT [--to PORT]... --from PORT [--settle S] [--seconds S]
//                  [--expect CODENAME=VALUE]... [--tolerance DB]
//
// Prints one line per tone; exit 0 when the gains match (or nothing was
// expected), 1 when they do not, 2 for a bad argument, 3 without a server
// or when the ports cannot be connected or nothing arrives in time.
#include <jack/jack.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "products/vantry/unit/ZelVantryUnit.h"

namespace {

constexpr double kTones[] = {100, 5000};
constexpr float kAmplitude = 0.25f;

struct Probe {
  jack_port_t* out = nullptr;
  jack_port_t* in = nullptr;
  double rate = 48000;
  std::uint64_t phase = 0;  // frames played
  std::vector<float> recording;
  std::atomic<bool> connected{false};
  std::atomic<std::size_t> recorded{0};
};

float signalAt(std::uint64_t frame, double rate) {
  const double t = double(frame) / rate;
  return kAmplitude * float(std::sin(2 * M_PI * kTones[0] * t) + std::sin(2 * M_PI * kTones[1] * t));
}

int process(jack_nframes_t frames, void* arg) {
  Probe& p = *static_cast<Probe*>(arg);
  auto* out = static_cast<float*>(jack_port_get_buffer(p.out, frames));
  const auto* in = static_cast<const float*>(jack_port_get_buffer(p.in, frames));
  for (jack_nframes_t i = 0; i < frames; ++i) out[i] = signalAt(p.phase + i, p.rate);
  p.phase += frames;
  if (p.connected.load()) {
    std::size_t at = p.recorded.load();
    const std::size_t n = std::min<std::size_t>(frames, p.recording.size() - at);
    std::memcpy(p.recording.data() + at, in, n * sizeof(float));
    p.recorded.store(at + n);
  }
  return 0;
}

// The gain of `tone` in the last `length` samples (Hann window), in dB
// against the played amplitude.
double gainAt(const std::vector<float>& x, std::size_t length, double tone, double rate) {
  const std::size_t start = x.size() - length;
  double re = 0, im = 0, windowSum = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const double w = 0.5 - 0.5 * std::cos(2 * M_PI * double(i) / double(length));
    const double angle = 2 * M_PI * tone * double(i) / rate;
    re += w * x[start + i] * std::cos(angle);
    im -= w * x[start + i] * std::sin(angle);
    windowSum += w;
  }
  const double amplitude = 2 * std::hypot(re, im) / windowSum;
  return 20 * std::log10(std::max(amplitude, 1e-12) / kAmplitude);
}

int usage(const char* why) {
  std::fprintf(stderr, "zel-jack-probe: %s\nusage: zel-jack-probe --to PORT... --from PORT [--settle S] [--seconds S] "
                       "[--expect CODENAME=VALUE]... [--tolerance DB]\n", why);
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> to;
  std::string from;
  double settle = 1.0, seconds = 0.5, tolerance = 1.0;
  std::vector<std::pair<int, float>> expect;
  bool expecting = false;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (i + 1 >= argc) return usage(("missing value for " + a).c_str());
    const std::string v = argv[++i];
    if (a == "--to") {
      to.push_back(v);
    } else if (a == "--from") {
      from = v;
    } else if (a == "--settle") {
      settle = std::atof(v.c_str());
    } else if (a == "--seconds") {
      seconds = std::atof(v.c_str());
    } else if (a == "--tolerance") {
      tolerance = std::atof(v.c_str());
    } else if (a == "--expect") {
      expecting = true;
      const auto eq = v.find('=');
      int pid = -1;
      for (const auto& p : zel::kZelParameters)
        if (eq != std::string::npos && v.substr(0, eq) == p.codeName) pid = p.pid;
      if (pid < 0) return usage(("unknown setting " + v).c_str());
      expect.emplace_back(pid, float(std::atof(v.c_str() + eq + 1)));
    } else {
      return usage(("unknown option " + a).c_str());
    }
  }
  if (to.empty() || from.empty() || !(settle >= 0) || !(seconds > 0.05)) return usage("--to and --from are needed");

  jack_status_t status{};
  jack_client_t* client = jack_client_open("zel-probe", JackNoStartServer, &status);
  if (!client) {
    std::fprintf(stderr, "zel-jack-probe: no JACK server\n");
    return 3;
  }
  Probe probe;
  probe.rate = jack_get_sample_rate(client);
  const std::size_t settleFrames = std::size_t(settle * probe.rate), length = std::size_t(seconds * probe.rate);
  probe.recording.assign(settleFrames + length, 0.0f);
  probe.out = jack_port_register(client, "out", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
  probe.in = jack_port_register(client, "in", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
  jack_set_process_callback(client, process, &probe);
  if (!probe.out || !probe.in || jack_activate(client) != 0) {
    std::fprintf(stderr, "zel-jack-probe: cannot start the client\n");
    return 3;
  }
  int failed = 0;
  for (const std::string& port : to) failed |= jack_connect(client, jack_port_name(probe.out), port.c_str());
  failed |= jack_connect(client, from.c_str(), jack_port_name(probe.in));
  if (failed) {
    std::fprintf(stderr, "zel-jack-probe: cannot connect the ports\n");
    jack_client_close(client);
    return 3;
  }
  probe.connected = true;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(settle + seconds + 10);
  while (probe.recorded.load() < probe.recording.size() && std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  jack_deactivate(client);
  jack_client_close(client);
  if (probe.recorded.load() < probe.recording.size()) {
    std::fprintf(stderr, "zel-jack-probe: the recording did not fill in time\n");
    return 3;
  }

  // The unit offline, on the same signal, in the same block size.
  std::vector<float> offline(probe.recording.size());
  zel::ZelVantryUnit unit(2, probe.rate);
  for (const auto& [pid, value] : expect) unit.setParameter(pid, value);
  std::vector<float> left(256), right(256);
  for (std::size_t at = 0; at < offline.size(); at += left.size()) {
    const std::size_t n = std::min(left.size(), offline.size() - at);
    for (std::size_t i = 0; i < n; ++i) left[i] = right[i] = signalAt(at + i, probe.rate);
    const float* in[2] = {left.data(), right.data()};
    float* out[2] = {left.data(), right.data()};
    unit.process(in, out, std::uint32_t(n));
    std::copy(left.begin(), left.begin() + long(n), offline.begin() + long(at));
  }

  int status_ = 0;
  for (double tone : kTones) {
    const double measured = gainAt(probe.recording, length, tone, probe.rate);
    const double wanted = gainAt(offline, length, tone, probe.rate);
    const bool ok = !expecting || std::fabs(measured - wanted) <= tolerance;
    std::printf("tone %.0f Hz: %.2f dB (the unit offline: %.2f dB)%s\n", tone, measured, wanted,
                ok ? "" : "  MISMATCH");
    if (!ok) status_ = 1;
  }
  return status_;
}
