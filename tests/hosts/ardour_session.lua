-- Vantry in an Ardour session, run by ardour7-lua on the dummy backend (see
-- ardour_session.sh, which checks the saved files between the two steps).
--   ardour7-lua ardour_session.lua create SESSION_DIR VALUES_FILE
--     a stereo track with Vantry, the factory preset "Telephone" loaded
--     through Ardour's preset API, Low Cut automated (20 Hz held, a ramp to
--     2000 Hz, held) and played back over pink noise; saved as "vantry".
--     VALUES_FILE gets the port values the session was saved with.
--   ardour7-lua ardour_session.lua reload SESSION_DIR VALUES_FILE
--     loads "vantry" in a new process, compares the ports with VALUES_FILE,
--     checks the automation came back, and saves the snapshot "reloaded".
-- Prints "ardour_session: ok" at the end; any failed check raises an error,
-- which makes ardour7-lua exit non-zero.

local URI = "https://www.zel-audio.example/plugins/vantry#stereo"
local LOW_CUT = 4 -- parameter (port) indices, as in lv2/common/ZelVantryURIs.h
local CONTROLS = 12
local RATE = 48000

local mode, dir, values_file = arg[1], arg[2], arg[3]
assert(mode == "create" or mode == "reload", "usage: ardour_session.lua create|reload SESSION_DIR VALUES_FILE")
assert(dir and values_file, "usage: ardour_session.lua create|reload SESSION_DIR VALUES_FILE")

local function check(cond, ...)
  if not cond then error("FAIL: " .. string.format(...), 0) end
end

local function param(proc, i)
  local v, refs = ARDOUR.LuaAPI.get_processor_param(proc, i, false)
  check(refs[3], "parameter %d is not a control input", i)
  return v
end

-- The Vantry insert on the session's only track, with the track.
local function find_vantry()
  for r in Session:get_tracks():iter() do
    local proc = r:nth_plugin(0)
    if not proc:isnil() and proc:to_insert():plugin(0):unique_id() == URI then return r, proc end
  end
  check(false, "no track holds Vantry")
end

-- Low Cut's automation control, list, control list and descriptor.
local function low_cut_automation(proc)
  local al, cl, pd = ARDOUR.LuaAPI.plugin_automation(proc, LOW_CUT)
  check(not al:isnil(), "Low Cut has no automation list")
  local control = proc:to_automatable():automation_control(
    Evoral.Parameter(ARDOUR.AutomationType.PluginAutomation, 0, LOW_CUT), false)
  check(not control:isnil(), "Low Cut has no automation control")
  return control, cl, pd
end

local function save(snapshot)
  -- save_state (name, pending, switch_to_snapshot, template_only, for_archive, only_used_assets)
  check(Session:save_state(snapshot, false, false, false, false, false) == 0, "saving '%s' failed", snapshot)
end

if mode == "create" then
  -- The dummy backend's pink noise on its capture ports feeds the track.
  check(AudioEngine:set_backend("None (Dummy)", "", ""), "no dummy backend")
  check(AudioEngine:set_device_name("Pink Noise") == 0, "the dummy backend has no pink noise device")
  check(create_session(dir, "vantry", RATE), "cannot create a session in %s", dir)

  local tracks = Session:new_audio_track(2, 2, nil, 1, "Vantry", ARDOUR.PresentationInfo.max_order,
                                         ARDOUR.TrackMode.Normal, true)
  check(tracks:size() == 1, "no stereo track")
  local track = tracks:front()
  -- A track without regions plays silence from disk; listen to its input instead.
  track:monitoring_control():set_value(ARDOUR.MonitorChoice.MonitorInput, PBD.GroupControlDisposition.NoGroup)

  local proc = ARDOUR.LuaAPI.new_plugin(Session, URI, ARDOUR.PluginType.LV2, "")
  check(not proc:isnil(), "Ardour does not know %s (is the bundle on LV2_PATH?)", URI)
  check(track:add_processor_by_index(proc, 0, nil, true) == 0, "Vantry could not be added to the track")
  local plugin = proc:to_insert():plugin(0)
  check(plugin:get_info().n_inputs:n_audio() == 2 and plugin:get_info().n_outputs:n_audio() == 2,
        "the stereo plug-in is not 2 in / 2 out")

  -- The factory preset through Ardour's own preset API.
  local preset = plugin:preset_by_label("Telephone")
  check(preset.valid, "Ardour lists no factory preset 'Telephone'")
  check(plugin:load_preset(preset), "loading 'Telephone' failed")
  check(plugin:last_preset().label == "Telephone", "Ardour's last preset is '%s'", plugin:last_preset().label)
  -- Telephone's band is 300 Hz - 3.4 kHz.
  check(param(proc, LOW_CUT) == 300 and param(proc, LOW_CUT + 1) == 3400,
        "the preset set Low Cut %g, High Cut %g", param(proc, LOW_CUT), param(proc, LOW_CUT + 1))

  -- Low Cut: 20 Hz for 1 s, a ramp to 2000 Hz until 3 s, then 2000 Hz.
  local control, cl, pd = low_cut_automation(proc)
  check(pd.lower == 20 and pd.upper == 20000 and pd.logarithmic,
        "Low Cut's range in Ardour: %g..%g, logarithmic %s", pd.lower, pd.upper, tostring(pd.logarithmic))
  local function at(seconds) return Temporal.timepos_t(math.floor(seconds * RATE)) end
  for _, point in ipairs({{0, 20}, {1, 20}, {3, 2000}, {6, 2000}}) do
    cl:add(at(point[1]), point[2], false, false)
  end
  control:set_automation_state(ARDOUR.AutoState.Play)

  -- Play 4.5 s, sampling the plug-in's Low Cut port and the track's output.
  Session:request_locate(0, false, ARDOUR.LocateTransportDisposition.MustStop, ARDOUR.TransportRequestSource.TRS_UI)
  sleep(0.3)
  Session:request_roll(ARDOUR.TransportRequestSource.TRS_UI)
  local samples = {}
  for _ = 1, 150 do
    sleep(0.1)
    local t = Session:transport_sample() / RATE
    local level = track:peak_meter():meter_level(0, ARDOUR.MeterType.MeterPeak)
    samples[#samples + 1] = {t = t, cut = param(proc, LOW_CUT), level = level}
    print(string.format("  %.2f s  Low Cut %7.1f Hz  output %6.1f dB", t, samples[#samples].cut, level))
    if t > 4.5 then break end
  end
  check(Session:transport_rolling(), "the transport stopped by itself")
  Session:request_stop(false, false, ARDOUR.TransportRequestSource.TRS_UI)
  sleep(0.3)
  check(samples[#samples].t > 4.5, "the transport reached only %.2f s", samples[#samples].t)

  -- The port follows the automation: 20 Hz held, a rising ramp, 2000 Hz held.
  local low, high, ramp = {}, {}, 0
  local previous = 0
  for _, s in ipairs(samples) do
    check(s.cut >= previous - 0.01, "Low Cut fell from %g to %g at %.2f s", previous, s.cut, s.t)
    previous = s.cut
    if s.t > 0.2 and s.t < 0.9 then
      check(math.abs(s.cut - 20) < 0.01, "Low Cut %g at %.2f s (20 expected)", s.cut, s.t)
      low[#low + 1] = s.level
    elseif s.t > 3.2 then
      check(math.abs(s.cut - 2000) < 0.01, "Low Cut %g at %.2f s (2000 expected)", s.cut, s.t)
      high[#high + 1] = s.level
    elseif s.t > 1.1 and s.t < 2.9 then
      check(s.cut > 20 and s.cut < 2000, "Low Cut %g mid-ramp at %.2f s", s.cut, s.t)
      ramp = ramp + 1
      -- Ardour interpolates a logarithmic port's automation geometrically: about 200 Hz at 2 s.
      if s.t > 1.9 and s.t < 2.1 then check(s.cut < 500, "Low Cut %g at %.2f s: not a logarithmic ramp", s.cut, s.t) end
    end
  end
  check(#low >= 3 and #high >= 3 and ramp >= 5, "too few readings (%d before, %d in, %d after the ramp)", #low, ramp, #high)

  -- The plug-in hears it: cutting pink noise below 2 kHz instead of 20 Hz
  -- (Telephone keeps it under 3.4 kHz) lowers the output by several dB.
  local function mean(list)
    local sum = 0
    for _, v in ipairs(list) do sum = sum + v end
    return sum / #list
  end
  local drop = mean(low) - mean(high)
  print(string.format("output %.1f dB at 20 Hz, %.1f dB at 2000 Hz: %.1f dB lower", mean(low), mean(high), drop))
  check(drop > 4, "the output fell only %.1f dB when Low Cut rose", drop)

  save("")
  local out = io.open(values_file, "w")
  for i = 0, CONTROLS - 1 do out:write(string.format("%d %.9g\n", i, param(proc, i))) end
  out:close()
else
  check(load_session(dir, "vantry"), "cannot load the session in %s", dir)
  local _, proc = find_vantry()
  local plugin = proc:to_insert():plugin(0)

  -- Every port but the automated Low Cut is back where it was saved.
  local compared = 0
  for line in io.lines(values_file) do
    local i, saved = line:match("^(%d+) (%S+)$")
    i, saved = tonumber(i), tonumber(saved)
    if i ~= LOW_CUT then
      check(math.abs(param(proc, i) - saved) < 1e-4, "port %d is %g after reloading, %g before", i, param(proc, i), saved)
      compared = compared + 1
    end
  end
  check(compared == CONTROLS - 1, "%s holds %d values", values_file, compared)

  local control, cl = low_cut_automation(proc)
  check(control:automation_state() == ARDOUR.AutoState.Play, "Low Cut's automation is no longer in Play")
  check(cl:events():size() == 4, "Low Cut's automation has %d points, 4 saved", cl:events():size())
  check(plugin:last_preset().label == "Telephone", "Ardour's last preset is '%s'", plugin:last_preset().label)

  -- The plug-in's own state (preset name, theme) goes into this snapshot as
  -- the plug-in reports it now; the shell script reads it back.
  save("reloaded")
end
print("ardour_session: ok")
