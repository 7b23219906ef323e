// A failure of the workshop's logic in the window's language: its reason's text from
// the language file, with the values filled in and the failure it led to after them.
#pragma once

#include "workshop_texts.hpp"

#include "image/failure.hpp"

#include <QString>
#include <exception>

namespace zevran::app {

QString failureText(const WorkshopTexts& texts, const image::Failure& failure);
QString failureText(const WorkshopTexts& texts, const std::exception& error);

}  // namespace zevran::app
