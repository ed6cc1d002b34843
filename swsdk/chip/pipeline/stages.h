// The stages of the pipeline, in the order in which a frame passes them.
//
// A stage that drops a frame calls Passage::stop, and the later stages still run: the field processor may release the
// frame, and the CPU may get it. A dropped frame still counts in the field processor; it is learned only if it was
// trapped or dropped by the spanning-tree state.
#pragma once

#include "chip/pipeline/egress_frame.h"
#include "chip/pipeline/packet.h"
#include "chip/pipeline/wire.h"

namespace chip {

/// Checks that the port accepts the frame: link up, not too long, within its rate, with an Ethernet header.
void admit(Passage& frame);
/// Checks that the source is not a multicast address.
void check_source(Passage& frame);
/// Determines the virtual port and the VLAN of the frame, and its tags inside the chip.
void assign_vlan(Passage& frame);
/// Checks that the VLAN exists, the port is a member and its spanning-tree state is forwarding.
void check_membership(Passage& frame);
/// Sends frames to the CPU by the L2 cache and the controls of the port.
void trap(Passage& frame);
/// Learns the source, if port, VLAN, limits and its entry allow.
void learn_source(Passage& frame);
/// Applies the ingress entries of the field processor, and their policers.
void apply_ingress_rules(Passage& frame);
/// Determines the copies: redirected, routed, replicated by a multicast route, or bridged.
void forward(Passage& frame);
/// Drops floods above the storm-control rates of the port.
void control_storms(Passage& frame);

/// The steps of forward(). The first two return whether they handled the frame.
bool route(Passage& frame);
bool route_multicast(Passage& frame);
void bridge(Passage& frame);

/// Sends one copy out of its port. Returns why it was lost, or none.
Drop send_copy(Passage& frame, const Copy& copy, Wire& wire);

/// The steps of send_copy(), of which those that can lose the copy return why. Rewrites the header of a routed copy.
Drop rewrite_routed(Passage& frame, const Copy& copy, EgressHeader& header);
/// Applies the egress entries of the field processor, which has some.
Drop apply_egress_rules(Passage& frame, const Copy& copy, const EgressHeader& header);
/// Turns the tags inside the chip into those on the wire.
void make_egress_tags(Passage& frame, const Copy& copy, EgressHeader& header);
/// Whether the policers of the matched entries mark a frame red.
bool is_red(Passage& frame, const FieldVerdict& verdict, std::size_t length);
/// Whether the copy is within the egress rate of the port.
bool is_within_shape(Passage& frame, Port port, std::size_t length);
/// Names what keeps a port from translating in one direction: the control of the chip, or its own.
void tell_translation_off(const Passage& frame, VlanControlOfPort direction, Port port);
/// Why an Ethernet port may not send the bytes: too long, or beyond its rate.
Drop why_not_out(Passage& frame, Port port, const EgressHeader& header, std::span<const uint8_t> bytes);
/// Sends the bytes. A port in loopback receives them again.
void leave(Passage& frame, Port port, const EgressHeader& header, std::span<const uint8_t> bytes, Wire& wire);

/// Sends a copy of an aggregate: as one, unless its port meters each frame, receives it again, or cannot send it.
Drop send_bulk(Passage& frame, Port port, const EgressHeader& header, std::span<const uint8_t> bytes, Wire& wire);

/// Sends the CPU its copy. Returns why that was lost, or none.
Drop send_to_cpu(Passage& frame, Wire& wire);

/// Counts a copy that has not left for a place: at its port, or, where there is none, at that of the frame.
void lose_copy(Passage& frame, const Place& to, Drop reason);
/// The same for so many frames of an aggregate.
void lose_frames(Passage& frame, const Place& to, Drop reason, std::size_t frames);

/// Copies for the mirrors of a port: of what came in, and of what goes out.
void mirror_ingress(Passage& frame, Wire& wire);
void mirror_egress(Passage& frame, Port port, const EgressHeader& header, std::span<const uint8_t> bytes, Wire& wire);

}  // namespace chip
