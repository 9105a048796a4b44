-- Vantry 1.1.1's saved Ardour session (products/vantry/tests/fixtures/
-- ardour-1.1.1), loaded by today's build: run by ardour7-lua on the dummy
-- backend (see saved_session.sh).
--   ardour7-lua saved_session.lua SESSION_DIR VALUES_FILE
-- Every port of both inserts must hold the value the session was saved
-- with (VALUES_FILE: NAME URI and twelve values per line); then the session
-- is saved again as "resaved", whose plug-in state the shell script reads.
-- Prints "saved_session: ok" at the end; a failed check raises an error.
local dir, values_file = arg[1], arg[2]
assert(dir and values_file, "usage: saved_session.lua SESSION_DIR VALUES_FILE")

local function check(cond, ...)
  if not cond then error("FAIL: " .. string.format(...), 0) end
end

check(load_session(dir, "saved"), "cannot load the session in %s", dir)

local inserts = {}
for r in Session:get_tracks():iter() do
  local proc = r:nth_plugin(0)
  if not proc:isnil() then inserts[proc:to_insert():plugin(0):unique_id()] = proc end
end

local compared = 0
for line in io.lines(values_file) do
  if not line:match("^#") then
    local words = {}
    for w in line:gmatch("%S+") do words[#words + 1] = w end
    local name, uri = words[1], words[2]
    local proc = inserts[uri]
    check(proc, "the session holds no insert of %s (%s)", uri, name)
    for i = 0, #words - 3 do
      local saved = tonumber(words[i + 3])
      local v, refs = ARDOUR.LuaAPI.get_processor_param(proc, i, false)
      check(refs[3], "%s: parameter %d is not a control input", name, i)
      check(math.abs(v - saved) <= 1e-4 * math.max(1, math.abs(saved)),
            "%s: port %d is %g after loading, %g when saved", name, i, v, saved)
      compared = compared + 1
    end
  end
end
check(compared == 24, "compared %d port values, 24 expected", compared)
check(Session:save_state("resaved", false, false, false, false, false) == 0, "saving 'resaved' failed")
print("saved_session: ok")
