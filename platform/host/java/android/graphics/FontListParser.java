// SPDX-License-Identifier: Apache-2.0
package android.graphics;

import android.text.FontConfig;
import java.io.IOException;
import java.io.InputStream;
import java.util.ArrayList;
import java.util.List;
import javax.xml.stream.XMLInputFactory;
import javax.xml.stream.XMLStreamConstants;
import javax.xml.stream.XMLStreamException;
import javax.xml.stream.XMLStreamReader;

/**
 * Reads the format of the system's {@code fonts.xml}: a {@code familyset} of families, a family of fonts. All
 * other content (aliases, axes, unknown elements) is skipped.
 */
public class FontListParser {
    private static final String BLANKS_AROUND = "^[ \n\r\t]+|[ \n\r\t]+$";

    private final XMLStreamReader xml;

    private FontListParser(XMLStreamReader xml) {
        this.xml = xml;
    }

    /**
     * Reads the whole stream and closes it.
     *
     * @throws IOException if it cannot be read, is not well-formed XML, is of another kind, has a document type (which might
     *     name files to read), or has an invalid number; the message names the line
     */
    public static FontConfig parse(InputStream in) throws IOException {
        XMLInputFactory factory = XMLInputFactory.newInstance();
        factory.setProperty(XMLInputFactory.SUPPORT_DTD, false);
        factory.setProperty(XMLInputFactory.IS_SUPPORTING_EXTERNAL_ENTITIES, false);
        factory.setProperty(XMLInputFactory.IS_COALESCING, true);
        try (in) {
            return new FontListParser(factory.createXMLStreamReader(in)).readFamilies();
        } catch (XMLStreamException e) {
            throw new IOException("font configuration: " + e.getMessage(), e);
        }
    }

    private IOException fault(String what) {
        return new IOException("font configuration, line " + xml.getLocation().getLineNumber() + ": " + what);
    }

    private FontConfig readFamilies() throws XMLStreamException, IOException {
        int event;
        while ((event = xml.next()) != XMLStreamConstants.START_ELEMENT) {
            if (event == XMLStreamConstants.DTD) {
                throw fault("a document type is not allowed");
            }
        }
        if (!xml.getLocalName().equals("familyset")) {
            throw fault("<familyset> expected, <" + xml.getLocalName() + "> found");
        }
        List<FontConfig.Family> families = new ArrayList<>();
        while (nextChild()) {
            if (xml.getLocalName().equals("family")) {
                families.add(readFamily());
            } else {
                skip();
            }
        }
        while (xml.hasNext()) {
            xml.next();  // what follows must be well-formed too
        }
        return new FontConfig(families.toArray(new FontConfig.Family[0]));
    }

    private FontConfig.Family readFamily() throws XMLStreamException, IOException {
        String name = attribute("name");
        String languages = attribute("lang");
        int variant = variant(attribute("variant"));
        List<FontConfig.Font> fonts = new ArrayList<>();
        while (nextChild()) {
            if (xml.getLocalName().equals("font")) {
                fonts.add(readFont());
            } else {
                skip();
            }
        }
        return new FontConfig.Family(
                name,
                fonts.toArray(new FontConfig.Font[0]),
                languages != null && !languages.isBlank() ? languages.strip().split("\\s+") : new String[0],
                variant);
    }

    private static int variant(String name) {
        if ("compact".equals(name)) {
            return FontConfig.Family.VARIANT_COMPACT;
        }
        return "elegant".equals(name) ? FontConfig.Family.VARIANT_ELEGANT : FontConfig.Family.VARIANT_DEFAULT;
    }

    private FontConfig.Font readFont() throws XMLStreamException, IOException {
        int index = number("index", 0);
        int weight = number("weight", 400);
        boolean italic = "italic".equals(attribute("style"));
        String fallbackFor = attribute("fallbackFor");
        StringBuilder file = new StringBuilder();
        for (int event = xml.next(); event != XMLStreamConstants.END_ELEMENT; event = xml.next()) {
            if (event == XMLStreamConstants.START_ELEMENT) {
                skip();
            } else if (event == XMLStreamConstants.CHARACTERS) {
                file.append(xml.getText());
            } else if (event == XMLStreamConstants.ENTITY_REFERENCE) {
                throw fault("unknown entity");
            }
        }
        return new FontConfig.Font(file.toString().replaceAll(BLANKS_AROUND, ""), index, weight, italic, fallbackFor);
    }

    private String attribute(String name) {
        return xml.getAttributeValue(null, name);
    }

    private int number(String attribute, int missing) throws IOException {
        String value = attribute(attribute);
        try {
            return value == null ? missing : Integer.parseInt(value);
        } catch (NumberFormatException e) {
            throw fault(attribute + "=\"" + value + "\" is not a number");
        }
    }

    // Moves to the next element within the current one; false at its end.
    private boolean nextChild() throws XMLStreamException {
        for (;;) {
            int event = xml.next();
            if (event == XMLStreamConstants.START_ELEMENT) {
                return true;
            }
            if (event == XMLStreamConstants.END_ELEMENT) {
                return false;
            }
        }
    }

    // Skips the current element with its content.
    private void skip() throws XMLStreamException {
        for (int depth = 1; depth > 0; ) {
            int event = xml.next();
            if (event == XMLStreamConstants.START_ELEMENT) {
                depth++;
            } else if (event == XMLStreamConstants.END_ELEMENT) {
                depth--;
            }
        }
    }
}
