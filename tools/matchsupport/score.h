#pragma once
// The match score from one player's side and the Elo difference it implies,
// with a 95% error bar from the spread of the per-game scores.

#include <cmath>
#include <cstdio>
#include <string>

namespace matchsupport {

struct Tally {
    int wins = 0;
    int draws = 0;
    int losses = 0;
    int unfinished = 0;  // "*" games, which count for nobody
    int games() const { return wins + draws + losses; }
    double points() const { return wins + 0.5 * draws; }
};

// Adds one game result to the tally of the player who had `white` colour.
inline void addResult(Tally& tally, const std::string& result, bool playerIsWhite) {
    if (result == "1/2-1/2") tally.draws++;
    else if (result == "1-0") (playerIsWhite ? tally.wins : tally.losses)++;
    else if (result == "0-1") (playerIsWhite ? tally.losses : tally.wins)++;
    else tally.unfinished++;
}

struct EloEstimate {
    bool known = false;    // false with no games, or a score of 0% or 100% (no finite value)
    bool bounded = false;  // false when the interval reaches 0% or 100%: too few games
    double elo = 0;
    double margin = 0;     // half the width of the 95% interval, when bounded
};

// Elo difference of a score fraction strictly between 0 and 1.
inline double eloFromFraction(double fraction) { return -400.0 * std::log10(1.0 / fraction - 1.0); }

// The logistic Elo of the mean score; the interval comes from the standard
// error of that mean, with each game a sample of 1, 1/2 or 0, so draws
// narrow it. An interval that reaches 0% or 100% has no finite Elo end.
inline EloEstimate estimateElo(const Tally& tally) {
    EloEstimate estimate;
    int n = tally.games();
    if (n == 0) return estimate;
    double mean = tally.points() / n;
    if (mean <= 0.0 || mean >= 1.0) return estimate;
    double variance = (tally.wins * (1 - mean) * (1 - mean) + tally.draws * (0.5 - mean) * (0.5 - mean) +
                       tally.losses * mean * mean) / n;
    double spread = 1.959964 * std::sqrt(variance / n);
    estimate.known = true;
    estimate.elo = eloFromFraction(mean) + 0.0;  // no "-0.0" for an even score
    if (mean - spread <= 0.0 || mean + spread >= 1.0) return estimate;
    estimate.bounded = true;
    estimate.margin = (eloFromFraction(mean + spread) - eloFromFraction(mean - spread)) / 2;
    return estimate;
}

// "Elo difference: +35.2 +/- 120.4 (95%)", or why there is no number.
inline std::string formatElo(const Tally& tally) {
    EloEstimate estimate = estimateElo(tally);
    char text[96];
    if (estimate.bounded)
        std::snprintf(text, sizeof text, "Elo difference: %+.1f +/- %.1f (95%%)", estimate.elo, estimate.margin);
    else if (estimate.known)
        std::snprintf(text, sizeof text, "Elo difference: %+.1f +/- inf (95%%, too few games)", estimate.elo);
    else if (tally.games() == 0)
        std::snprintf(text, sizeof text, "Elo difference: unknown (no finished games)");
    else
        std::snprintf(text, sizeof text, "Elo difference: %s (score %s)", tally.wins > 0 ? "+inf" : "-inf",
                      tally.wins > 0 ? "100%" : "0%");
    return text;
}

}  // namespace matchsupport
