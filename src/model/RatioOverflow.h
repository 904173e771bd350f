#pragma once

class OrloRatio;

/// Whether the product of two ratios still fits in 64 bits. There are two answers: an exact one, and a
/// tolerant one by which the transpose buttons decide, and which passes a product that wrapped to nearly
/// the same value.
namespace ratiooverflow {

/// The exact product does not exceed 64 bits. No log line, no allocation; any thread.
bool productFits(const OrloRatio& a, const OrloRatio& b);
/// The product in 64 bits is close to the product in floating point; a debug line tells when it is not.
bool productIsClose(const OrloRatio& a, const OrloRatio& b);

} // namespace ratiooverflow
