#include "app/ApplicationService.h"

namespace corvane {

/// The system itself starts a bundle once and sends later starts to it.
struct ApplicationService::Bus { };

ApplicationService::ApplicationService(std::string, QObject *parent) : QObject(parent) { }

ApplicationService::~ApplicationService() = default;

} // namespace corvane
