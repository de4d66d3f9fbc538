#include "lotrix/error.h"

#include <utility>

#include "lotrix/constants.h"

namespace lotrix {

Error::Error(std::int32_t number, std::string description, std::string source, int engineCode)
    : content_(std::make_shared<const Content>(Content{
          number, std::move(description),
          source.empty() ? std::string(kApplicationTitle) : std::move(source), engineCode})) {}

std::int32_t Error::number() const noexcept { return content_->number; }
const std::string& Error::source() const noexcept { return content_->source; }
const std::string& Error::description() const noexcept { return content_->description; }
int Error::engineCode() const noexcept { return content_->engineCode; }
const char* Error::what() const noexcept { return content_->description.c_str(); }

}  // namespace lotrix
