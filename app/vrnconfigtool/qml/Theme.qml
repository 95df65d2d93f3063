import QtQuick 2.15

// The colours of the light and the dark theme.
QtObject {
    property bool dark: false
    readonly property color window: dark ? "#2b2d30" : "#efefef"
    readonly property color base: dark ? "#1e1f22" : "#ffffff"
    readonly property color alternateBase: dark ? "#26282b" : "#f5f5f5"
    readonly property color text: dark ? "#dfe1e5" : "#1b1b1b"
    readonly property color button: dark ? "#3c3f41" : "#e8e8e8"
    readonly property color brightText: dark ? "#ffffff" : "#ffffff"
    readonly property color highlight: dark ? "#2f65ca" : "#308cc6"
    readonly property color highlightedText: "#ffffff"
    readonly property color light: dark ? "#505357" : "#ffffff"
    readonly property color midlight: dark ? "#45484b" : "#f0f0f0"
    readonly property color mid: dark ? "#35383b" : "#b8b8b8"
    readonly property color darkShade: dark ? "#1a1b1d" : "#9f9f9f"
    readonly property color shadow: "#000000"
    readonly property color placeholder: dark ? "#8c8f94" : "#7f7f7f"
    readonly property color error: dark ? "#ff7b72" : "#b22222"
}
