#!/usr/bin/env bash
# Medians of hosts.sh's run lines, one row per host and plug-in, each figure
# with its difference and ratio against the baseline row of the same host.
#   table.sh runs.txt
set -u
awk '
function median(list,   n, v, i, j, t) {
  n = split(list, v, " ")
  if (n == 0) return "NA"
  for (i = 2; i <= n; i++) { t = v[i] + 0; for (j = i - 1; j >= 1 && v[j] + 0 > t; j--) v[j + 1] = v[j]; v[j + 1] = t }
  return n % 2 ? v[(n + 1) / 2] : (v[n / 2] + v[n / 2 + 1]) / 2
}
function cell(x, b, unit) {
  if (x == "NA") return "NA"
  if (b == "NA" || b == "") return sprintf("%g%s", x, unit)
  if (b + 0 == 0) return sprintf("%g%s (%+g)", x, unit, x - b)
  return sprintf("%g%s (%+g, x%.2f)", x, unit, x - b, x / b)
}
{
  delete f
  for (i = 1; i <= NF; i++) { split($i, kv, "="); f[kv[1]] = kv[2] }
  key = f["host"] SUBSEP f["label"]
  if (!(key in seen)) { seen[key] = 1; order[++rows] = key }
  total[key]++
  if (f["ui"] != "") ui[key] = f["ui"]
  if (f["status"] != "ok") { bad[key]++; next }
  for (k = 1; k <= nm; k++) if (f[m[k]] != "NA") vals[key, m[k]] = vals[key, m[k]] " " f[m[k]]
}
BEGIN { nm = split("map paint settle mem cpu cs", m, " ") }
END {
  for (r = 1; r <= rows; r++) for (k = 1; k <= nm; k++) med[order[r], m[k]] = median(vals[order[r], m[k]])
  print "| host | plug-in | editor | runs ok | map ms | paint ms | settle ms | peak MiB | idle CPU % | wake-ups /s |"
  print "|---|---|---|---|---|---|---|---|---|---|"
  for (r = 1; r <= rows; r++) {
    key = order[r]; split(key, hl, SUBSEP); base = hl[1] SUBSEP "baseline"
    line = sprintf("| %s | %s | %s | %d/%d", hl[1], hl[2], ui[key], total[key] - bad[key], total[key])
    for (k = 1; k <= nm; k++) line = line " | " (hl[2] == "baseline" ? cell(med[key, m[k]], "") : cell(med[key, m[k]], med[base, m[k]]))
    print line " |"
  }
  print ""
  print "Medians; in brackets the difference from the baseline of the same host (eg-amp, jalv'"'"'s generic slider) and the ratio."
}' "$1"
