// An instance of the plug-in, as the host made it.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "bridges/ofx/ClipImage.h"
#include "bridges/ofx/Parameters.h"
#include "host/Instance.h"
#include "host/Module.h"

namespace vantorel::ofx {

// What draws one window at a time. It keeps its memory from window to window.
struct Renderer {
  explicit Renderer(std::shared_ptr<const host::Module> module) : instance(std::move(module)) {}

  host::Instance instance;
  host::Image layer;   // where the source's image cannot be drawn from as it is
  host::Image target;  // where the output's image cannot be drawn into
  host::Image row;     // of another clip
};

class Effect {
 public:
  // Throws a Fault where the host lacks something that the instance needs.
  Effect(EffectHandle handle, std::shared_ptr<const host::Module> module);

  // Makes an instance for a handle, and ends it; a handle has one at most. The plug-in keeps them, so that nothing is
  // lost in a host that does not. Memory of an instance that ends during a render is freed after that.
  static void create(EffectHandle handle, std::shared_ptr<const host::Module> module);
  static void destroy(EffectHandle handle);
  // Those that the host has not destroyed.
  static void destroyAll();
  // That of a handle; null where there is none, or for `of` a Fault.
  static std::shared_ptr<Effect> find(EffectHandle handle);
  static std::shared_ptr<Effect> of(EffectHandle handle);

  EffectHandle handle() const { return handle_; }
  const Parameters& parameters() const { return parameters_; }
  bool isGeneral() const { return is_general_; }

  // The host's clips live as long as the instance. Null clips where the context has none.
  const Clip& source() const { return source_; }
  const Clip& background() const { return background_; }
  const Clip& matte() const { return matte_; }
  const Clip& output() const { return output_; }

  // Where normalised positions lie; where the host does not say, the source's frame.
  Project project(Time time) const;
  // What is drawn onto the corners, in canonical coordinates: the source's frame, or the project's if the source is
  // endless. Nothing where the host does not tell.
  std::optional<RectD> sourceFrame(Time time) const;

  // A renderer that nobody uses, until it is given back. From any thread.
  std::unique_ptr<Renderer> takeRenderer();
  void giveBack(std::unique_ptr<Renderer> renderer) noexcept;
  // Frees those that nobody uses.
  void purge();

  // Shows a message at the instance until it is cleared; an error is said once in hosts without such messages.
  void showError(const std::string& message);
  void clearError();

 private:
  EffectHandle handle_;
  std::shared_ptr<const host::Module> module_;
  Parameters parameters_;
  Clip source_;
  Clip background_;
  Clip matte_;
  Clip output_;
  bool is_general_ = false;
  std::mutex mutex_;
  std::vector<std::unique_ptr<Renderer>> idle_;
  std::atomic<bool> has_error_ = false;
};

// A renderer of an effect's for as long as this lives.
class BorrowedRenderer {
 public:
  explicit BorrowedRenderer(Effect& effect) : effect_(effect), renderer_(effect.takeRenderer()) {}
  ~BorrowedRenderer() { effect_.giveBack(std::move(renderer_)); }
  BorrowedRenderer(const BorrowedRenderer&) = delete;
  BorrowedRenderer& operator=(const BorrowedRenderer&) = delete;
  Renderer& operator*() { return *renderer_; }
  Renderer* operator->() { return renderer_.get(); }

 private:
  Effect& effect_;
  std::unique_ptr<Renderer> renderer_;
};

// The properties of an instance or a descriptor.
Properties propertiesOf(EffectHandle handle);
ParamSet paramSetOf(EffectHandle handle);

}  // namespace vantorel::ofx
