#include "app/standalone/ZelJackAudio.h"

#include <jack/jack.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

ZEL_NAMESPACE_BEGIN

namespace {

constexpr std::string_view kLeftovers = "leftovers";
constexpr double kLeftoverCheck = 0.05;

// JACK's own messages are quiet while we try to reach a server (its absence
// is ours to explain) and go to stderr afterwards.
std::atomic<bool> gQuietJack{false};
void jackError(const char* message) {
  if (!gQuietJack.load(std::memory_order_relaxed)) std::fprintf(stderr, "%s: JACK: %s\n", ZelCurrentProduct().slug, message);
}
void jackInfo(const char*) {}

std::uint64_t nowNanoseconds() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return std::uint64_t(t.tv_sec) * 1000000000u + std::uint64_t(t.tv_nsec);
}

std::vector<std::string> physicalPorts(jack_client_t* client, unsigned long direction) {
  std::vector<std::string> names;
  if (const char** ports = jack_get_ports(client, nullptr, JACK_DEFAULT_AUDIO_TYPE, JackPortIsPhysical | direction)) {
    for (const char** p = ports; *p; ++p) names.emplace_back(*p);
    jack_free(ports);
  }
  return names;
}

}  // namespace

struct ZelJackAudio::Shared {
  ZelLiveUnit* live = nullptr;
  ZelRunLoop* runLoop = nullptr;
  std::uint32_t channels = 2;
  jack_port_t* in[2] = {nullptr, nullptr};
  jack_port_t* out[2] = {nullptr, nullptr};
  bool measure = false;

  std::atomic<std::uint32_t> rate{0};     // the rate the unit plays at
  std::atomic<std::uint32_t> newRate{0};  // a rate the server changed to
  std::atomic<std::uint32_t> bufferSize{0};
  std::atomic<std::uint64_t> xruns{0};
  std::atomic<bool> shutDown{false};
  char reason[256] = {};  // written before shutDown is set

  // Written by the audio thread only.
  std::atomic<std::uint64_t> blocks{0}, frames{0}, totalNanoseconds{0}, maxNanoseconds{0};

  // Ends the main thread's sleep; the posted call does nothing itself.
  void wake() { runLoop->post([] {}); }
};

struct ZelJackAudio::Callbacks {
  // The audio thread: no allocation, lock, wait or I/O.
  static int process(jack_nframes_t frames, void* arg) {
    Shared& s = *static_cast<Shared*>(arg);
    const std::uint64_t start = s.measure ? nowNanoseconds() : 0;
    const float* in[2] = {nullptr, nullptr};
    float* out[2] = {nullptr, nullptr};
    for (std::uint32_t c = 0; c < s.channels; ++c) {
      in[c] = static_cast<const float*>(jack_port_get_buffer(s.in[c], frames));
      out[c] = static_cast<float*>(jack_port_get_buffer(s.out[c], frames));
    }
    s.live->process(in, out, frames);
    if (s.measure) {
      const std::uint64_t took = nowNanoseconds() - start;
      s.blocks.store(s.blocks.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
      s.frames.store(s.frames.load(std::memory_order_relaxed) + frames, std::memory_order_relaxed);
      s.totalNanoseconds.store(s.totalNanoseconds.load(std::memory_order_relaxed) + took, std::memory_order_relaxed);
      if (took > s.maxNanoseconds.load(std::memory_order_relaxed)) s.maxNanoseconds.store(took, std::memory_order_relaxed);
    }
    return 0;
  }

  // JACK's notification thread from here on.
  static int sampleRate(jack_nframes_t rate, void* arg) {
    Shared& s = *static_cast<Shared*>(arg);
    if (rate != s.rate.load()) {
      s.newRate.store(rate);
      s.wake();
    }
    return 0;
  }

  static int bufferSize(jack_nframes_t frames, void* arg) {
    static_cast<Shared*>(arg)->bufferSize.store(frames);
    return 0;
  }

  static int xrun(void* arg) {
    static_cast<Shared*>(arg)->xruns.fetch_add(1);
    return 0;
  }

  static void shutdown(jack_status_t, const char* reason, void* arg) {
    Shared& s = *static_cast<Shared*>(arg);
    std::snprintf(s.reason, sizeof s.reason, "%s", reason && reason[0] ? reason : "no reason given");
    s.shutDown.store(true);
    s.wake();
  }
};

ZelJackAudio::ZelJackAudio(ZelRunLoop& runLoop, ZelStandaloneUnit& unit, const ZelJackOptions& options)
    : runLoop_(runLoop), unit_(unit), options_(options), shared_(std::make_unique<Shared>()) {
  shared_->live = &unit.live();
  shared_->runLoop = &runLoop;
  shared_->channels = unit.unitChannels();
  shared_->measure = options.measure;
}

std::unique_ptr<ZelJackAudio> ZelJackAudio::open(ZelRunLoop& runLoop, ZelStandaloneUnit& unit,
                                                 const ZelJackOptions& options, std::string& error) {
  std::unique_ptr<ZelJackAudio> audio(new ZelJackAudio(runLoop, unit, options));
  if (!audio->start(error)) return nullptr;
  return audio;
}

ZelJackAudio::~ZelJackAudio() {
  close();
  runLoop_.cancelAllForTarget(this);
}

bool ZelJackAudio::start(std::string& error) {
  jack_set_error_function(jackError);
  jack_set_info_function(jackInfo);
  gQuietJack = true;
  jack_status_t status{};
  jack_client_t* client = jack_client_open(options_.clientName.c_str(), JackNoStartServer, &status);
  gQuietJack = false;
  if (!client) {
    char code[32];
    std::snprintf(code, sizeof code, " (status 0x%x)", unsigned(status));
    error = (status & JackServerFailed) ? "no JACK server is running"
            : (status & JackNameNotUnique) ? "the client name is taken"
                                           : std::string("cannot open a JACK client") + code;
    return false;
  }
  client_ = client;
  clientName_ = jack_get_client_name(client);

  // The unit plays at the server's rate from the first block; no audio
  // thread runs yet, so the new unit is taken at once.
  const jack_nframes_t rate = jack_get_sample_rate(client);
  unit_.setSampleRate(rate);
  unit_.live().settle();
  shared_->rate = rate;
  shared_->bufferSize = jack_get_buffer_size(client);

  Shared& s = *shared_;
  for (std::uint32_t c = 0; c < s.channels; ++c) {
    const std::string in = "in_" + std::to_string(c + 1), out = "out_" + std::to_string(c + 1);
    s.in[c] = jack_port_register(client, in.c_str(), JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
    s.out[c] = jack_port_register(client, out.c_str(), JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
    if (!s.in[c] || !s.out[c]) {
      error = "cannot register the JACK ports";
      close();
      return false;
    }
  }
  jack_set_process_callback(client, Callbacks::process, &s);
  jack_set_sample_rate_callback(client, Callbacks::sampleRate, &s);
  jack_set_buffer_size_callback(client, Callbacks::bufferSize, &s);
  jack_set_xrun_callback(client, Callbacks::xrun, &s);
  jack_on_info_shutdown(client, Callbacks::shutdown, &s);
  if (jack_activate(client) != 0) {
    error = "cannot activate the JACK client";
    close();
    return false;
  }
  connectPorts();
  return true;
}

void ZelJackAudio::connectPorts() {
  auto* client = static_cast<jack_client_t*>(client_);
  const Shared& s = *shared_;
  auto connect = [client](const std::string& from, const std::string& to) {
    const int result = jack_connect(client, from.c_str(), to.c_str());
    if (result != 0 && result != EEXIST)
      std::fprintf(stderr, "%s: cannot connect %s to %s\n", ZelCurrentProduct().slug, from.c_str(), to.c_str());
  };
  std::vector<std::string> ins, outs;
  for (std::uint32_t c = 0; c < s.channels; ++c) {
    ins.emplace_back(jack_port_name(s.in[c]));
    outs.emplace_back(jack_port_name(s.out[c]));
  }
  // Named ports: one feeds (or takes) every channel, several go in turn.
  auto named = [&](const std::vector<std::string>& others, const std::vector<std::string>& ours, bool toUs) {
    const std::size_t pairs = others.size() == 1 ? ours.size() : others.size();
    for (std::size_t k = 0; k < pairs; ++k) {
      const std::string& other = others[others.size() == 1 ? 0 : k];
      const std::string& mine = ours[k % ours.size()];
      toUs ? connect(other, mine) : connect(mine, other);
    }
  };
  // Physical ports pair up by number.
  auto physical = [&](const std::vector<std::string>& others, const std::vector<std::string>& ours, bool toUs) {
    for (std::size_t k = 0; k < std::min(others.size(), ours.size()); ++k)
      toUs ? connect(others[k], ours[k]) : connect(ours[k], others[k]);
  };
  if (!options_.connectIn.empty())
    named(options_.connectIn, ins, true);
  else if (options_.connectPhysical)
    physical(physicalPorts(client, JackPortIsOutput), ins, true);
  if (!options_.connectOut.empty())
    named(options_.connectOut, outs, false);
  else if (options_.connectPhysical)
    physical(physicalPorts(client, JackPortIsInput), outs, false);
}

void ZelJackAudio::service() {
  Shared& s = *shared_;
  if (client_ && s.shutDown.exchange(false)) {
    // The server ended the client: no audio thread runs any more.
    jack_client_close(static_cast<jack_client_t*>(client_));
    client_ = nullptr;
    unit_.live().settle();
    if (shutdownHandler_) shutdownHandler_(s.reason);
    return;
  }
  if (const std::uint32_t rate = s.newRate.exchange(0); rate != 0 && client_) {
    unit_.setSampleRate(rate);
    s.rate = rate;
    watchLeftovers();
  }
  unit_.live().collect();
}

void ZelJackAudio::watchLeftovers() {
  runLoop_.cancel(ZelCallKey{this, kLeftovers});
  runLoop_.schedule(
      kLeftoverCheck,
      [this] {
        if (!client_) unit_.live().settle();
        unit_.live().collect();
        if (unit_.live().hasLeftovers()) watchLeftovers();
      },
      ZelCallKey{this, kLeftovers});
}

void ZelJackAudio::close() {
  if (!client_) return;
  auto* client = static_cast<jack_client_t*>(client_);
  jack_deactivate(client);
  jack_client_close(client);
  client_ = nullptr;
  unit_.live().settle();
}

ZelJackStatistics ZelJackAudio::statistics() const {
  const Shared& s = *shared_;
  ZelJackStatistics st;
  st.blocks = s.blocks.load();
  st.frames = s.frames.load();
  st.xruns = s.xruns.load();
  st.meanMicroseconds = st.blocks ? double(s.totalNanoseconds.load()) / double(st.blocks) / 1000.0 : 0;
  st.maxMicroseconds = double(s.maxNanoseconds.load()) / 1000.0;
  st.sampleRate = s.rate.load();
  st.bufferSize = s.bufferSize.load();
  return st;
}

ZEL_NAMESPACE_END
