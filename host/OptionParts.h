#pragma once

#include "Options.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// What the options of several commands are made of.

/// An option X,Y,Z; its default is what `target` holds.
void addVector(CLI::App& command, const std::string& name, Vector& target, const std::string& help);

void addFile(CLI::App& command, const std::string& name, std::string& target,
             const std::string& help, const std::string& group = "Options");

/// One of some names; its default is what `target` holds.
void addNames(CLI::App& command, const std::string& name, std::string& target,
              const std::string& help, const std::vector<std::string>& names,
              const std::string& group = "Options");

/// Takes other names of a value for the value: names of the field's, or older ones.
std::function<std::string(std::string)> otherNames(std::map<std::string, std::string> valueOf);

/// A check that a value is a number in a range, both ends included.
std::function<std::string(const std::string&)> numberRange(double low, double high);

void addCsvSafe(CLI::App& command, bool& isSafe);

/// "WxH" in pixels. \throws CLI::ValidationError
void readSize(const std::string& text, int& width, int& height);

/// `--size WxH`, which sets `target` if it is given.
void addSize(CLI::App& command, std::optional<Size>& target, const std::string& help,
             const std::string& group);

}  // namespace Lumivane::Host
