// What each function of the Chip SDK does to what is in a chip, as far as needed to tell which calls have no effect
// left.
#pragma once

#include <span>
#include <string_view>

namespace recorder {

enum class Verb {
  sets,       // the thing is as this call made it; a former call that did is done with
  replaces,   // the same, and what it was before, the words behind the slash, is gone
  adds,       // sets what other things rest on; what made it first stays
  ends,       // the thing and all below it are gone, and so is the effect of this call
  undoes,     // ends the thing if a call that is known made it, and sets it otherwise
  programs,   // sets it in a field entry; what it was before stays in the chip until the entry is installed
  withdraws,  // ends it in a field entry; likewise
};

/// `thing` is a path of words, the one that it is part of before each. Of a word that begins with $ stands the value:
/// `$f` is the function, `$1` its argument 1, counted from the unit, 0, on, `$1.vid` a field of that argument, and as
/// it was after the call if that wrote it. Behind a colon stands what of the value: the `port` that it is in whichever
/// encoding, `each` of a set of ports, the `kind` that flags of a MAC entry say, or the `kinds` that flags of a
/// deletion say. `*` is any word.
struct Effect {
  std::string_view function;
  Verb verb;
  std::string_view thing;
};

/// Empty when the function changes nothing that lasts.
std::span<const Effect> effects_of(std::string_view function);

}  // namespace recorder
