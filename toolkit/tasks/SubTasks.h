#pragma once

#include <cstdint>
#include <vector>

/// A piece of work that may be cut into pieces of different weight, one of which is worked on at a time.
///
/// Threads  None of its own: whoever shares one guards it.
/// Units    Fractions of the whole, from 0 to 1.
class SubTasks {
public:
    /// The whole of a work.
    SubTasks() = default;

    /// A work that is the piece of `whole` that is being worked on.
    [[nodiscard]] static SubTasks partOf(SubTasks const& whole);

    /// Cuts the piece that is worked on into as many of the same weight.
    void start(std::uint32_t count) { start(std::vector<std::uint64_t>(count, 1)); }
    /// Cuts the piece that is worked on into pieces of these weights; ones of no weight at all count alike.
    void start(std::vector<std::uint64_t> const& weights);
    /// The piece is done; the next one is begun.
    void next();
    /// The pieces are done; the one that was cut is worked on again, at its end.
    void end();

    /// So much of the piece that is worked on is done. Less than before or more than 1 is taken as it is.
    void report(double fraction) { fraction_ = fraction; }

    /// How much is done of all that the outermost work is.
    [[nodiscard]] double progress() const;

private:
    /// A piece that was cut: where its parts end, in fractions of it.
    struct Level {
        std::vector<double> ends;
        std::size_t current = 0;
    };
    struct Span {
        double begin = 0.0;
        double length = 1.0;
    };

    [[nodiscard]] Span currentSpan() const;

    Span own_;
    std::vector<Level> levels_;
    double fraction_ = 0.0;
};
