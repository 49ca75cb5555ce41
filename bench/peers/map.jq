# A native JSON document to OpenConfig.
def two_decimals:
  (if . < 0 then "-" else "" end)
  + ((if . < 0 then -. else . end)
     | (. / 100 | floor | tostring) + "." + (. % 100 | if . < 10 then "0" else "" end + tostring));

def channel:
  { "lower-frequency",
    "state": ({ "lower-frequency", "upper-frequency" }
              + if has("rx-power") then { "power": (."rx-power" | two_decimals) } else {} end),
    "upper-frequency" };

{ "openconfig-channel-monitor:channel-monitors": {
    "channel-monitor": [
      ."Vantra-TALIN-controller-kestrel-ots-oper:ots-oper"."ots-ports"."ots-port"[]
      | .name as $controller
      | "\($controller[3:4])/\($controller[5:6])" as $prefix
      | ($prefix + if $controller[9:10] == "0" then "-CHMON-BST" else "-CHMON-PRE" end) as $name
      | { "name": $name,
          "state": { "name": $name, "monitor-port": "\($prefix)-OtsCtrl-0/\($controller[9:10])" },
          "channels": { "channel": [."ots-spectrum-info"."spectrum-slice-power-info"[] | channel] } }
    ] } }
