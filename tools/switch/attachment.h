// What a port of the chip is connected to: an interface of the host, or files with frames.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>

#include "chip/segments.h"

namespace vswitch {

/// An error in what the user asked for: a message of one line.
struct CannotStart : std::runtime_error {
  using runtime_error::runtime_error;
};

using Bytes = std::span<const uint8_t>;

/// A frame, or an aggregate of many.
struct Frame {
  Bytes bytes;
  chip::Segments segments;
};

/// Takes frames that are valid during the call.
using Receiver = std::function<void(std::span<const Frame> frames)>;

/// Receives errors that occur while frames pass: messages of one line.
using Tell = std::function<void(const std::string& trouble)>;

class Attachment {
 public:
  Attachment() = default;
  virtual ~Attachment() = default;
  Attachment(const Attachment&) = delete;
  Attachment& operator=(const Attachment&) = delete;

  /// What becomes readable when frames have come; -1 when there is nothing to wait for.
  virtual int descriptor() const = 0;

  /// Whether frames can be read without waiting.
  virtual bool has_frames() const { return false; }

  /// Passes on frames that have arrived, but only so many that other ports need not wait. Never blocks.
  virtual void receive(const Receiver& receiver) = 0;

  /// Sends a frame at the latest with the next flush(). One that cannot be sent is lost, as on a cable. An aggregate is
  /// cut where the other end would not take it whole.
  void send(const Frame& frame);

  /// Sends what waits to be sent with others.
  virtual void flush() {}

  virtual bool has_link() const = 0;

  /// Closes an interface that is gone, and opens a new one with the same name. Returns whether it opened one.
  virtual bool plug_again() { return false; }

  /// How many frames the host dropped because they came faster than they were received.
  virtual uint64_t lost() { return 0; }

  /// Whether no more frames will come.
  virtual bool is_over() const { return false; }

 private:
  /// The same for one frame, however long it is.
  virtual void send_one(Bytes frame) = 0;

  /// Sends an aggregate whole, if the other end takes it so.
  virtual bool send_whole(const Frame& /*aggregate*/) { return false; }

  chip::Cutter cutter_;
};

/// How many frames one attachment passes on before the others get their turn.
constexpr int burst = 64;

/// Bytes of the longest frame or aggregate.
constexpr std::size_t max_frame = 65536 + 64;

/// The outer tag of a frame: after the addresses.
constexpr std::size_t tag_at = 12;
constexpr std::size_t tag_size = 4;

/// Connects what the text names: IFACE, tap:NAME or pcap:IN:OUT. Throws CannotStart.
std::unique_ptr<Attachment> attach(const std::string& text, const Tell& tell);

std::unique_ptr<Attachment> attach_interface(const std::string& name);
std::unique_ptr<Attachment> attach_pcap(const std::string& input, const std::string& output, const Tell& tell);

/// A new interface of the host with that name, deleted with the attachment; without `mac` its address is random. When
/// it is deleted and another TAP interface is created with its name, that one is used.
std::unique_ptr<Attachment> attach_tap(const std::string& name, const uint8_t* mac);

}  // namespace vswitch
