// An instance of the plug-in, created by the host.
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

// Draws one window at a time, and keeps its memory for the next one.
struct Renderer {
  explicit Renderer(std::shared_ptr<const host::Module> module) : instance(std::move(module)) {}

  host::Instance instance;
  host::Image layer;   // a copy of the source, if its image cannot be read directly
  host::Image target;  // the window, if it cannot be drawn into the output's image
  host::Image row;     // one row of another clip
};

class Effect {
 public:
  // Throws a Fault if the host lacks something that the instance needs.
  Effect(EffectHandle handle, std::shared_ptr<const host::Module> module);

  // Creates and destroys the instance of a handle. The plug-in keeps them itself instead of relying on the host. The
  // memory of an instance that is destroyed during a render is freed after that render.
  static void create(EffectHandle handle, std::shared_ptr<const host::Module> module);
  static void destroy(EffectHandle handle);
  // All that the host has left behind.
  static void destroyAll();
  // The instance of a handle. If there is none, `find` returns null and `of` throws a Fault.
  static std::shared_ptr<Effect> find(EffectHandle handle);
  static std::shared_ptr<Effect> of(EffectHandle handle);

  EffectHandle handle() const { return handle_; }
  const Parameters& parameters() const { return parameters_; }
  bool isGeneral() const { return is_general_; }

  // The host keeps clips for as long as the instance. Null clips if the context has none.
  const Clip& source() const { return source_; }
  const Clip& background() const { return background_; }
  const Clip& matte() const { return matte_; }
  const Clip& output() const { return output_; }

  // The project's frame, or the source's if the host does not tell it.
  Project project(Time time) const;
  // What is drawn onto the corners, in canonical coordinates: the source's frame, or the project's if the source is
  // endless. Nothing if the host tells neither.
  std::optional<RectD> sourceFrame(Time time) const;

  // A renderer for the caller alone until it is given back. From any thread.
  std::unique_ptr<Renderer> takeRenderer();
  void giveBack(std::unique_ptr<Renderer> renderer) noexcept;
  // Frees the idle renderers.
  void purge();

  // Shows a message on the instance until clearError; hosts without persistent messages show it once.
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

// A renderer that is given back at the end of the scope.
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
