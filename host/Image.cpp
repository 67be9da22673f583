#include "host/Image.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "host/checking/OutOfMemory.h"

namespace vantorel::host {

namespace {

constexpr std::size_t alignedUp(std::size_t bytes) {
  return (bytes + Image::kRowAlignment - 1) / Image::kRowAlignment * Image::kRowAlignment;
}

// Requests huge pages: sampling a rotated layer touches more normal pages than the TLB has entries.
void preferLargePages(void* memory, std::size_t bytes) {
  constexpr std::size_t kWorthwhile = std::size_t{4} << 20;
  if (bytes < kWorthwhile) {
    return;
  }
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  if (std::align(page, page, memory, bytes) != nullptr) {
    // Only a hint: if the kernel has no huge pages, normal ones will do.
    static_cast<void>(madvise(memory, bytes / page * page, MADV_HUGEPAGE));
  }
}

}  // namespace

std::string sizeText(Size size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

void Image::Free::operator()(std::byte* memory) const {
  ::operator delete[](memory, std::align_val_t{kRowAlignment});
}

Result<Image> Image::create(Size size, Depth depth) {
  return withMemoryErrors("image size", [&] { return allocate(size, depth); });
}

Result<Image> Image::allocate(Size size, Depth depth) {
  if (size.width <= 0 || size.height <= 0) {
    return invalidArgument("image size", sizeText(size) + " is not a picture's size; both sides must be 1 or more");
  }
  const std::size_t row_bytes = alignedUp(static_cast<std::size_t>(size.width) * bytesPerPixel(depth));
  if (row_bytes > std::size_t{std::numeric_limits<std::int32_t>::max()}) {
    return invalidArgument("image size", sizeText(size) + " has rows longer than 2147483647 bytes; use fewer columns");
  }
  const std::size_t bytes = row_bytes * static_cast<std::size_t>(size.height);
  void* const memory = ::operator new[](bytes, std::align_val_t{kRowAlignment}, std::nothrow);
  if (memory == nullptr) {
    return failure(
        ErrorKind::OutOfMemory, "image size",
        "out of memory for " + sizeText(size) + " pixels (" + std::to_string(bytes) + " bytes); use a smaller picture");
  }
  preferLargePages(memory, bytes);
  Image image;
  image.memory_.reset(static_cast<std::byte*>(memory));
  image.view_ = {image.memory_.get(), static_cast<std::ptrdiff_t>(row_bytes), size, depth};
  return image;
}

Result<void> Image::fit(Size size, Depth depth) {
  if (!empty() && size == this->size() && depth == this->depth()) {
    return {};
  }
  *this = Image();
  return create(size, depth).map([this](Image&& created) { *this = std::move(created); });
}

void Image::clear() {
  if (!empty()) {
    std::memset(view_.data, 0, static_cast<std::size_t>(view_.row_bytes) * static_cast<std::size_t>(view_.size.height));
  }
}

}  // namespace vantorel::host
