-- Wireshark dissector for the frames of the device network, as written by
-- `vrnconfig monitor --write FILE.pcap` (link type USER0, 147: one whole
-- frame per record, checksum included). The wire format is described in
-- platform/vrn/PROTOCOL.md.
--
-- Use: wireshark -X lua_script:tools/wireshark/vrn.lua FILE.pcap
--      tshark -X lua_script:tools/wireshark/vrn.lua -r FILE.pcap -V
-- or copy this file into Wireshark's personal plugins folder.

local vrn = Proto("vrn", "Device network frame")

local node_types = {
    [0] = "tool", [1] = "motor", [2] = "TX30", [3] = "keypad", [4] = "sensor",
    [5] = "interface", [6] = "motor with inputs", [7] = "LRU50", [8] = "TX50DC",
    [9] = "DC motor", [10] = "setting tool", [15] = "any",
}

local commands = {
    [0x02] = "CTRL_STOP", [0x03] = "CTRL_MOVETO", [0x04] = "CTRL_MOVEOF", [0x05] = "CTRL_MOVE",
    [0x06] = "CTRL_WINK", [0x0C] = "GET_MOTOR_POSITION", [0x0D] = "POST_MOTOR_POSITION",
    [0x11] = "SET_MOTOR_LIMITS", [0x12] = "SET_MOTOR_DIRECTION", [0x13] = "GET_MOTOR_ROLLING_SPEED",
    [0x14] = "SET_MOTOR_ROLLING_SPEED", [0x15] = "SET_MOTOR_IP", [0x19] = "GET_MOTOR_SOFT_START_STOP",
    [0x1A] = "SET_MOTOR_SOFT_START_STOP", [0x1F] = "SET_FACTORY_DEFAULT", [0x21] = "GET_MOTOR_LIMITS",
    [0x22] = "GET_MOTOR_DIRECTION", [0x23] = "POST_MOTOR_ROLLING_SPEED", [0x25] = "GET_MOTOR_IP",
    [0x26] = "DIAG_GET_TOTAL_MOVE_COUNT", [0x27] = "DIAG_GET_TOTAL_REV_COUNT",
    [0x28] = "DIAG_GET_THERMAL_COUNT", [0x29] = "POST_MOTOR_SOFT_START_STOP",
    [0x2A] = "DIAG_GET_OBSTACLE_COUNT", [0x2B] = "DIAG_GET_POWER_COUNT", [0x2C] = "DIAG_GET_RESET_COUNT",
    [0x2D] = "DIAG_GET_ENCODER_ERRORS", [0x31] = "POST_MOTOR_LIMITS", [0x32] = "POST_MOTOR_DIRECTION",
    [0x35] = "POST_MOTOR_IP", [0x36] = "DIAG_POST_TOTAL_MOVE_COUNT", [0x37] = "DIAG_POST_TOTAL_REV_COUNT",
    [0x38] = "DIAG_POST_THERMAL_COUNT", [0x3A] = "DIAG_POST_OBSTACLE_COUNT", [0x3B] = "DIAG_POST_POWER_COUNT",
    [0x3C] = "DIAG_POST_RESET_COUNT", [0x3D] = "DIAG_POST_ENCODER_ERRORS",
    [0x40] = "GET_NODE_ADDR", [0x41] = "GET_GROUP_ADDR", [0x42] = "GET_NETWORK_CONFIG",
    [0x45] = "GET_NODE_LABEL", [0x48] = "GET_NETWORK_STAT", [0x49] = "GET_NETWORK_ERROR_STAT",
    [0x4C] = "GET_NODE_SERIAL_NUMBER", [0x50] = "CLEAR_DISCOVERY", [0x52] = "SET_GROUP_ADDR",
    [0x53] = "SET_NODE_DISCOVERY", [0x55] = "SET_NODE_LABEL", [0x56] = "SET_DEAF_MODE",
    [0x59] = "SET_NETWORK_STAT", [0x60] = "POST_NODE_ADDR", [0x61] = "POST_GROUP_ADDR",
    [0x62] = "POST_NETWORK_CONFIG", [0x65] = "POST_NODE_LABEL", [0x68] = "POST_NETWORK_STAT",
    [0x69] = "POST_NETWORK_ERROR_STAT", [0x6C] = "POST_NODE_SERIAL_NUMBER", [0x6F] = "NACK",
    [0x74] = "GET_NODE_APP_VERSION", [0x75] = "POST_NODE_APP_VERSION", [0x7F] = "ACK",
}

local nack_status = {
    [0x01] = "data out of range", [0x10] = "unknown message", [0x11] = "message length error",
    [0x20] = "busy", [0x21] = "node locked", [0x22] = "wrong position", [0x23] = "end limits not set",
    [0x24] = "intermediate position not defined", [0x25] = "obstacle",
}

local f = vrn.fields
f.command = ProtoField.uint8("vrn.command", "Command", base.HEX, commands)
f.ack = ProtoField.bool("vrn.ack", "Acknowledgement requested", 8, nil, 0x80)
f.group = ProtoField.bool("vrn.group", "Destination is a group", 8, nil, 0x40)
f.length = ProtoField.uint8("vrn.length", "Frame length", base.DEC, nil, 0x3F)
f.src_type = ProtoField.uint8("vrn.src.type", "Source node type", base.DEC, node_types)
f.src = ProtoField.uint24("vrn.src", "Source node", base.HEX)
f.dst = ProtoField.uint24("vrn.dst", "Destination", base.HEX)
f.payload = ProtoField.bytes("vrn.payload", "Payload")
f.crc = ProtoField.uint16("vrn.crc", "Checksum", base.HEX)
f.crc_ok = ProtoField.bool("vrn.crc.ok", "Checksum good")
f.label = ProtoField.string("vrn.label", "Label")
f.index = ProtoField.uint8("vrn.index", "Index")
f.group_number = ProtoField.uint24("vrn.group_number", "Group number", base.HEX)
f.pulses = ProtoField.uint16("vrn.pulses", "Position (pulses)")
f.percent = ProtoField.uint8("vrn.percent", "Position (percent)")
f.func = ProtoField.uint8("vrn.function", "Function")
f.value = ProtoField.uint16("vrn.value", "Value")
f.speed_up = ProtoField.uint8("vrn.speed.up", "Up speed")
f.speed_down = ProtoField.uint8("vrn.speed.down", "Down speed")
f.speed_slow = ProtoField.uint8("vrn.speed.slow", "Slow speed")
f.nack_status = ProtoField.uint8("vrn.nack.status", "NACK status", base.HEX, nack_status)
f.refused = ProtoField.uint8("vrn.nack.refused", "Refused command", base.HEX, commands)
f.acked = ProtoField.uint8("vrn.acked", "Acknowledged command", base.HEX, commands)

-- CRC-16/CCITT, polynomial 0x1021, initial 0xFFFF.
local function crc16(tvb, len)
    local crc = 0xFFFF
    for i = 0, len - 1 do
        crc = bit.bxor(crc, bit.lshift(tvb(i, 1):uint(), 8))
        for _ = 1, 8 do
            if bit.band(crc, 0x8000) ~= 0 then
                crc = bit.band(bit.bxor(bit.lshift(crc, 1), 0x1021), 0xFFFF)
            else
                crc = bit.band(bit.lshift(crc, 1), 0xFFFF)
            end
        end
    end
    return crc
end

-- Payload fields of the commands worth naming; each list gives field and size.
local layouts = {
    [0x41] = {{f.index, 1}},
    [0x61] = {{f.index, 1}, {f.group_number, 3}},
    [0x52] = {{f.index, 1}, {f.group_number, 3}},
    [0x03] = {{f.func, 1}, {f.value, 2}},
    [0x0D] = {{f.pulses, 2}, {f.percent, 1}},
    [0x14] = {{f.speed_up, 1}, {f.speed_down, 1}, {f.speed_slow, 1}},
    [0x23] = {{f.speed_up, 1}, {f.speed_down, 1}, {f.speed_slow, 1}},
    [0x25] = {{f.index, 1}},
    [0x35] = {{f.index, 1}, {f.pulses, 2}, {f.percent, 1}},
    [0x6F] = {{f.nack_status, 1}, {f.refused, 1}},
    [0x7F] = {{f.acked, 1}},
}

function vrn.dissector(tvb, pinfo, tree)
    local len = tvb:len()
    if len < 11 then
        return 0
    end
    pinfo.cols.protocol = "VRN"
    local code = tvb(0, 1):uint()
    local flags = tvb(1, 1):uint()
    local frame_len = bit.band(flags, 0x3F)
    local t = tree:add(vrn, tvb(), "Device network frame")
    t:add(f.command, tvb(0, 1))
    t:add(f.ack, tvb(1, 1))
    t:add(f.group, tvb(1, 1))
    t:add(f.length, tvb(1, 1))
    t:add(f.src_type, tvb(2, 1))
    t:add(f.src, tvb(3, 3))
    t:add(f.dst, tvb(6, 3))
    if frame_len < 11 or frame_len > 32 or frame_len > len then
        t:add_expert_info(PI_MALFORMED, PI_ERROR, "length field out of range")
        return len
    end
    local payload_len = frame_len - 11
    local crc = tvb(9 + payload_len, 2):uint()
    t:add(f.crc, tvb(9 + payload_len, 2))
    t:add(f.crc_ok, crc == crc16(tvb, 9 + payload_len))
    local name = commands[code] or string.format("0x%02X", code)
    local src = string.format("%s 0x%06X", node_types[tvb(2, 1):uint()] or "?", tvb(3, 3):uint())
    local dst = tvb(6, 3):uint()
    local dst_text = dst == 0xFFFFFF and "all" or string.format("%s0x%06X", bit.band(flags, 0x40) ~= 0 and "group " or "", dst)
    local info = string.format("%s > %s %s", src, dst_text, name)
    if payload_len > 0 then
        local p = tvb(9, payload_len)
        t:add(f.payload, p)
        if code == 0x65 or code == 0x55 then
            local label = p:string(ENC_UTF_8)
            t:add(f.label, p, label)
            info = info .. string.format(' "%s"', label)
        elseif layouts[code] then
            local at = 0
            for _, field in ipairs(layouts[code]) do
                if at + field[2] > payload_len then
                    break
                end
                t:add(field[1], tvb(9 + at, field[2]))
                at = at + field[2]
            end
            if code == 0x6F and payload_len >= 1 then
                info = info .. " " .. (nack_status[p(0, 1):uint()] or "?")
            end
        end
    end
    pinfo.cols.info = info
    return len
end

DissectorTable.get("wtap_encap"):add(wtap.USER0, vrn)
