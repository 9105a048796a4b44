-- Stereo tracks, each with one Zel plug-in at its defaults, in a new
-- session saved as "vantry" (ardour7-lua, the dummy backend): by default
-- "Vantry A" and "Vantry B" with Vantry, for ardour_two.sh; ZEL_TRACKS
-- ("Track=slug,Track=slug") names others.
--   ardour7-lua ardour_two.lua create SESSION_DIR VALUES_FILE
local dir = arg[2]
assert(arg[1] == "create" and dir, "usage: ardour_two.lua create SESSION_DIR VALUES_FILE")
local function check(cond, ...)
  if not cond then error("FAIL: " .. string.format(...), 0) end
end
local tracks = os.getenv("ZEL_TRACKS") or "Vantry A=vantry,Vantry B=vantry"
check(AudioEngine:set_backend("None (Dummy)", "", ""), "no dummy backend")
check(AudioEngine:set_device_name("Pink Noise") == 0, "the dummy backend has no pink noise device")
check(create_session(dir, "vantry", 48000), "cannot create a session in %s", dir)
for name, slug in tracks:gmatch("([^=,]+)=([^,]+)") do
  local uri = "https://www.zel-audio.example/plugins/" .. slug .. "#stereo"
  local made = Session:new_audio_track(2, 2, nil, 1, name, ARDOUR.PresentationInfo.max_order,
                                       ARDOUR.TrackMode.Normal, true)
  check(made:size() == 1, "no stereo track")
  local proc = ARDOUR.LuaAPI.new_plugin(Session, uri, ARDOUR.PluginType.LV2, "")
  check(not proc:isnil(), "Ardour does not know %s (is the bundle on LV2_PATH?)", uri)
  check(made:front():add_processor_by_index(proc, 0, nil, true) == 0, "%s could not be added", uri)
end
check(Session:save_state("vantry", false, false, false, false, false) == 0, "saving failed")
Session:request_stop(false, false, ARDOUR.TransportRequestSource.TRS_UI)
print("ardour_two: ok")
