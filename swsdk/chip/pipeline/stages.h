// The stages of the pipeline, in the order in which a frame passes them.
//
// A stage that finds that a frame goes no further calls Passage::stop and lets it pass on: the field processor may
// release it, and the CPU may want it. Stages that change tables leave them alone for a stopped frame.
#pragma once

#include "chip/pipeline/egress_frame.h"
#include "chip/pipeline/meters.h"
#include "chip/pipeline/packet.h"
#include "chip/pipeline/wire.h"

namespace chip {

/// Whether the port takes the frame at all: enabled, not too long, within its rate.
void admit(Passage& frame);
/// Whether the source can be a host.
void check_source(Passage& frame);
/// Which virtual port and which VLAN the frame belongs to, and the tags that it has inside the chip.
void assign_vlan(Passage& frame);
/// Whether the VLAN exists, the port is a member and its spanning-tree state lets frames in.
void check_membership(Passage& frame);
/// The frames that the L2 cache and the controls of the port keep for the CPU.
void trap(Passage& frame);
/// Learns where the source is, as the port, the VLAN, the limits and its entry allow.
void learn_source(Passage& frame);
/// The entries of the field processor, and their policers.
void apply_ingress_rules(Passage& frame);
/// Finds the copies that leave: one redirected, routed, replicated by a multicast route, or bridged.
void forward(Passage& frame);
/// Drops the floods of a port that are too many.
void control_storms(Passage& frame);

/// The ways of forward(). The first two tell whether they took the frame.
bool route(Passage& frame);
bool route_multicast(Passage& frame);
void bridge(Passage& frame);

/// Sends one copy out of its port, if nothing keeps it back there.
void send_copy(Passage& frame, const Copy& copy, Wire& wire);

/// The steps of send_copy(). What the router gives a copy that goes through one of its interfaces; false when it does
/// not go.
bool rewrite_routed(Passage& frame, const Copy& copy, EgressHeader& header);
/// The entries of the field processor on the way out; false when they drop the copy.
bool apply_egress_rules(Passage& frame, const Copy& copy, const EgressHeader& header);
/// Makes the tags for the wire of those that the copy has inside the chip.
void make_egress_tags(Passage& frame, const Copy& copy, EgressHeader& header);
/// Whether the policers of the entries that a frame meets find it red.
bool is_red(Passage& frame, const FieldVerdict& verdict, std::size_t length);
/// Whether the port's rate lets the copy out.
bool is_within_shape(Passage& frame, int port, std::size_t length);
/// Whether the port lets the bytes out: they are not too long, and within its rate.
bool lets_out(Passage& frame, int port, const EgressHeader& header, std::span<const uint8_t> bytes);
/// Lets them out. What leaves a port that is looped back comes in there again.
void leave(Passage& frame, int port, const EgressHeader& header, std::span<const uint8_t> bytes, Wire& wire);

/// Sends the CPU its copy.
void send_to_cpu(Passage& frame, Wire& wire);

/// Copies for the mirrors of a port: of what came in, and of what goes out.
void mirror_ingress(Passage& frame, Wire& wire);
void mirror_egress(Passage& frame, int port, const EgressHeader& header, std::span<const uint8_t> bytes, Wire& wire);

}  // namespace chip
