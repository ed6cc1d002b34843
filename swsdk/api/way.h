// The way of a frame through the chip, as text.
#pragma once

#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "chip/pipeline/observer.h"
#include "chip/pipeline/packet.h"
#include "chip/pipeline/wire.h"

namespace api {

/// Writes down what becomes of a frame; what leaves goes on to another wire, if there is one.
class Way : public chip::Observer, public chip::Wire {
 public:
  enum class Detail {
    ends,  // what came in, left, was lost and why
    all,   // the stages and the entries that decided, too
  };

  /// @param reader  whose calls need no name: what precedes its lines in the journals of others
  /// @param wire    null: what leaves is lost
  Way(Detail detail, std::string reader, chip::Wire* wire) : detail_(detail), reader_(std::move(reader)), wire_(wire) {}

  const std::string& text() const { return text_; }

  /// Whether a line tells what Detail::ends does.
  static bool is_of_ends(std::string_view line);

  void arrives(const chip::Passage& frame) override;
  void begins(const char* stage, const chip::Passage& frame) override;
  void ends(const chip::Passage& frame) override;
  void decides(const chip::Decider& decider) override;
  void sends(chip::Port port, const chip::Passage& frame) override;
  void lost(const chip::Place& to, chip::Drop reason) override;
  void comes_back(chip::Port port) override;
  void passed(const chip::Passage& frame, chip::Drop reason) override;

  void transmit(chip::Port port, std::span<const uint8_t> frame) override;
  void deliver(const chip::CpuFrame& frame) override;

 private:
  /// What a stage can change.
  struct State {
    explicit State(const chip::Passage& frame);

    uint16_t outer_tag;
    std::optional<uint16_t> inner_tag;
    chip::Place source;
    uint32_t cpu_reasons;
    chip::Drop drop;
    std::size_t copies;
    std::optional<chip::MacEntry> source_entry;  // what the MAC table knows of its source
  };

  void head(std::string_view line);
  void flush_entries();
  std::string changes(const chip::Passage& frame) const;

  const Detail detail_;
  const std::string reader_;
  chip::Wire* const wire_;
  const chip::Chip* chip_ = nullptr;
  const char* stage_ = nullptr;
  std::optional<State> before_;
  std::set<std::tuple<std::size_t, long long, std::string>> told_;  // kinds of deciders, calls and entries
  std::string entries_;                                             // below the line to come
  std::string text_;
};

}  // namespace api
