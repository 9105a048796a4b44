-- Two stereo tracks in a new session saved as "vantry" (ardour7-lua, the
-- dummy backend): "Vantry" with Vantry, "Tollhum" with Tollhum, both at
-- their defaults. For ardour_beside_vantry.sh.
--   ardour7-lua ardour_beside_vantry.lua create SESSION_DIR VALUES_FILE
local dir = arg[2]
assert(arg[1] == "create" and dir, "usage: ardour_beside_vantry.lua create SESSION_DIR VALUES_FILE")
local function check(cond, ...)
  if not cond then error("FAIL: " .. string.format(...), 0) end
end
check(AudioEngine:set_backend("None (Dummy)", "", ""), "no dummy backend")
check(AudioEngine:set_device_name("Pink Noise") == 0, "the dummy backend has no pink noise device")
check(create_session(dir, "vantry", 48000), "cannot create a session in %s", dir)
for _, name in ipairs({"Vantry", "Tollhum"}) do
  local uri = "https://www.zel-audio.example/plugins/" .. name:lower() .. "#stereo"
  local tracks = Session:new_audio_track(2, 2, nil, 1, name, ARDOUR.PresentationInfo.max_order,
                                         ARDOUR.TrackMode.Normal, true)
  check(tracks:size() == 1, "no stereo track")
  local proc = ARDOUR.LuaAPI.new_plugin(Session, uri, ARDOUR.PluginType.LV2, "")
  check(not proc:isnil(), "Ardour does not know %s (is the bundle on LV2_PATH?)", uri)
  check(tracks:front():add_processor_by_index(proc, 0, nil, true) == 0, "%s could not be added", name)
end
check(Session:save_state("vantry", false, false, false, false, false) == 0, "saving failed")
Session:request_stop(false, false, ARDOUR.TransportRequestSource.TRS_UI)
print("ardour_beside_vantry: ok")
