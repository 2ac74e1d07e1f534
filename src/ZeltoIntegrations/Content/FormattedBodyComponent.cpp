#include <ZeltoIntegrations/Content/FormattedBodyComponent.h>

#include <Platform/EnumDescription.h>

namespace zelto {

using HeaderLevel = FormattedBodyComponent::HeaderLevel;
ZELTO_DESCRIBE_ENUM(HeaderLevel, h1, h2, h3, h4, h5, h6);

} // namespace zelto
