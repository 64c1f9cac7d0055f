// What a soak claims, and what was found against it.
#pragma once

#include <QtCore/QString>

namespace host {

/** What must hold after, and while, a line misbehaves. */
enum class Claim {
    Kept,       ///< every acknowledged write is in the controller
    Untouched,  ///< no bit or word that nobody wrote has changed
    ReadRight,  ///< what the host reads is what the controller holds
    Accounted   ///< every request came to an end that the host was told of
};
constexpr int ClaimCount = int(Claim::Accounted) + 1;

/** A fact that contradicts a claim; the text names the address. */
struct Finding
{
    Claim claim;
    QString text;
};

}  // namespace host
