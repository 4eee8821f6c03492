#include "core/HeadersFactory.hpp"

namespace ZAK {

HTTPHeaders HeadersFactory::headers() const {
  return HTTPHeaders({HTTPHeaders::Element::defaultAcceptEncoding(),
                      HTTPHeaders::Element::defaultAcceptLanguage(facts_.preferredLanguages), zvUserAgent(),
                      zvPlatform(), zvAppLanguage(), zvVersion(), zvOsVersion(), zvDeviceLanguage(), zvTimezone(),
                      zvDeviceId()});
}

// The system's name stays what the back-end's statistics have always been told.
HTTPHeaders::Element HeadersFactory::zvUserAgent() const {
  return HTTPHeaders::Element::userAgent(bundle_.executable + "/" + bundle_.shortVersion + " (" + bundle_.identifier +
                                         "; build:" + bundle_.version + "; iOS " + facts_.operatingSystemVersion +
                                         ") 1.0.0/ZVApiKit");
}

HTTPHeaders::Element HeadersFactory::zvPlatform() const { return {"zolvi-platform", deviceInfo_.platform}; }

// The app's language goes out as the device's and the device's as the app's: the back-end expects the two crossed.
HTTPHeaders::Element HeadersFactory::zvAppLanguage() const { return {"zolvi-device-language", facts_.languageCode}; }

HTTPHeaders::Element HeadersFactory::zvVersion() const {
  return {"zolvi-app-version", bundle_.shortVersion + "-(" + bundle_.version + ")"};
}

HTTPHeaders::Element HeadersFactory::zvOsVersion() const { return {"zolvi-os-version", deviceInfo_.osVersion}; }

HTTPHeaders::Element HeadersFactory::zvDeviceLanguage() const {
  return {"zolvi-app-language", facts_.preferredLanguages.front()};
}

HTTPHeaders::Element HeadersFactory::zvTimezone() const { return {"zolvi-timezone", facts_.timeZone}; }

HTTPHeaders::Element HeadersFactory::zvDeviceId() const { return {"zolvi-device-id", deviceInfo_.deviceId}; }

}  // namespace ZAK
