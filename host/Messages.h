#pragma once

#include <string>

/// The messages that pass between a controller and its drivers. The controller makes them, they
/// live for the call that carries them, and nobody else deletes them.

/// A command or a request: a name and named text parameters.
class ICmdMessage {
 public:
  virtual ~ICmdMessage() = default;
  /// The command's name, compared to the letter by whoever reads it.
  virtual const std::string& GetName() const = 0;
  /// The value of a parameter; the empty text where it was not given.
  virtual std::string GetParam(const char* name) const = 0;
};

/// Where a command may leave an answer.
class ICmdReturn {
 public:
  virtual ~ICmdReturn() = default;
  virtual void SetResult(const std::string& name, const std::string& value) = 0;
};

/// A programming condition to be tested: a name and named text parameters.
class ICondMessage {
 public:
  virtual ~ICondMessage() = default;
  /// The condition's name, "IF_TIME" for example.
  virtual const std::string& GetName() const = 0;
  /// The value of a parameter; the empty text where it was not given.
  virtual std::string GetParam(const char* name) const = 0;
};

/// A call through a binding, made by the controller and filled in by the driver that sends it.
/// Reference-counted: `VxBaseDriver::CreateBindMessage` hands its reference to the caller.
class IBindMessage {
 public:
  virtual void AddRef() = 0;
  virtual void Release() = 0;
  /// Sets what is called, and its integer argument; the call before is forgotten.
  virtual void SetCommand(const char* command, int argument) = 0;
  virtual const std::string& GetCommand() const = 0;
  virtual int GetArgument() const = 0;

 protected:
  ~IBindMessage() = default;
};
