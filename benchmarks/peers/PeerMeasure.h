#pragma once

#include <cstddef>
#include <functional>
#include <string>

/// Ends the program with a message when something it needs does not hold.
void Require(bool bHolds, const std::string& sWhat);

/// What one case took: medians of at least three rounds.
struct PeerFigures {
    double dWall = 0;  // Seconds.
    double dUser = 0;  // CPU seconds; see below.
    double dSystem = 0;
    double dMemory = 0;   // Peak resident bytes above those before the clock started.
    double dWritten = 0;  // Bytes handed to the system's calls for writing.
    int nRounds = 0;
};

/// One case: each round in a process of its own, a copy of the caller, so that all start with the
/// same memory and caches of the libraries.
struct PeerCase {
    std::function<void()> prepare = [] {};  // In the caller, before each round, outside the clock.
    std::function<void()> work;             // What is measured.
    std::function<void()> check = [] {};    // In the copy, after the clock; ends it when wrong.
    size_t nMaxRounds = 25;
};

/// Three rounds, and more while they take less than two seconds in all. The kernel tells user from
/// system time by sampling, which is coarse for short work: the shares come from all rounds
/// together, the sum from the median round. Ends the program when a round fails.
PeerFigures Measure(const PeerCase& peerCase);
