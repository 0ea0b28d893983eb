#pragma once

/// The bar runs from 0 to 100 over a whole run. A run over both chips gives each chip one half of it.
namespace QuillonFirmwareUpgrade::ProgressScale {

constexpr int kAllDone = 100;
constexpr int kPcHalfDone = 50;

} // namespace QuillonFirmwareUpgrade::ProgressScale
