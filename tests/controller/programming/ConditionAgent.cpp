#include "tests/controller/programming/ConditionAgent.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <stdexcept>

#include "controller/Clock.h"
#include "controller/LocalTimeText.h"
#include "controller/programming/ProgrammingJson.h"

using namespace controller;

ConditionAgent::ConditionAgent() : host_(Place{52.52, 13.405}) {
  std::string error;
  loader_ = DriverLoader::Open(VEXALINK_AGENT, &error);
  if (loader_ == nullptr) throw std::runtime_error(error);
  agent_ = std::make_unique<DriverInstance>(*loader_, host_);
  agent_->Initialize(100, std::nullopt);
}

bool ConditionAgent::Holds(const Condition& condition) {
  return agent_->Driver().TestCondition(
      ConditionMessage(condition.name, {{"CONDITIONAL_XML", condition.xml}}), nullptr);
}

BerlinTime::BerlinTime() : hadZone_(std::getenv("TZ") != nullptr) {
  if (hadZone_) before_ = std::getenv("TZ");
  setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
  tzset();
}

BerlinTime::~BerlinTime() {
  Clock::Release();
  if (hadZone_) {
    setenv("TZ", before_.c_str(), 1);
  } else {
    unsetenv("TZ");
  }
  tzset();
}

std::time_t BerlinTime::Set(const std::string& local) {
  const auto moment = ParseLocalTime(local);
  if (!moment) throw std::runtime_error("no time: " + local);
  Clock::Freeze(*moment);
  return *moment;
}

Condition ConditionFrom(const std::string& json) {
  FieldErrors errors;
  Condition condition = ReadCondition(nlohmann::json::parse(json), "", errors);
  EXPECT_EQ(ErrorText(errors), "") << json;
  return condition;
}
