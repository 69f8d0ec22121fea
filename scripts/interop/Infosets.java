// The infoset of a document, read from Fast Infoset by the Java codec or
// from XML text, as one comparable line: elements by URI and local name,
// their attributes sorted (and their namespace declarations, when asked),
// and text that is not only blanks, each run between \u0001 marks where it
// stands among the children.
import java.io.File;
import java.io.FileInputStream;
import java.io.InputStream;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

import javax.xml.parsers.DocumentBuilderFactory;

import org.w3c.dom.Attr;
import org.w3c.dom.Document;
import org.w3c.dom.NamedNodeMap;
import org.w3c.dom.Node;

import com.sun.xml.fastinfoset.dom.DOMDocumentParser;

final class Infosets {
    private static final String XMLNS = "http://www.w3.org/2000/xmlns/";

    private Infosets() {}

    static Document readFastInfoset(File file) throws Exception {
        Document document = factory().newDocumentBuilder().newDocument();
        try (InputStream in = new FileInputStream(file)) {
            new DOMDocumentParser().parse(document, in);
        }
        return document;
    }

    static Document readText(File file) throws Exception {
        return factory().newDocumentBuilder().parse(file);
    }

    static String canonical(Document document, boolean declarations) {
        StringBuilder out = new StringBuilder();
        element(document.getDocumentElement(), declarations, out);
        return out.toString();
    }

    private static DocumentBuilderFactory factory() {
        DocumentBuilderFactory factory = DocumentBuilderFactory.newInstance();
        factory.setNamespaceAware(true);
        return factory;
    }

    private static void element(Node node, boolean declarations, StringBuilder out) {
        out.append("<{").append(nz(node.getNamespaceURI())).append('}').append(node.getLocalName());
        List<String> items = new ArrayList<>();
        NamedNodeMap attributes = node.getAttributes();
        for (int i = 0; i < attributes.getLength(); ++i) {
            Attr a = (Attr) attributes.item(i);
            if (!XMLNS.equals(a.getNamespaceURI()))
                items.add(" @{" + nz(a.getNamespaceURI()) + "}" + a.getLocalName() + "=\u0001" + a.getValue() + "\u0001");
            else if (declarations)
                items.add(" xmlns:" + (a.getPrefix() == null ? "" : a.getLocalName()) + "=" + a.getValue());
        }
        Collections.sort(items);
        for (String item : items)
            out.append(item);
        out.append('>');
        StringBuilder text = new StringBuilder();
        for (Node child = node.getFirstChild(); child != null; child = child.getNextSibling()) {
            if (child.getNodeType() == Node.TEXT_NODE || child.getNodeType() == Node.CDATA_SECTION_NODE) {
                text.append(child.getNodeValue());
                continue;
            }
            if (child.getNodeType() == Node.ELEMENT_NODE) {  // comments and instructions don't split text
                flushText(text, out);
                element(child, declarations, out);
            }
        }
        flushText(text, out);
        out.append("</>");
    }

    private static void flushText(StringBuilder text, StringBuilder out) {
        if (text.toString().trim().length() != 0)
            out.append("\u0001").append(text).append("\u0001");
        text.setLength(0);
    }

    private static String nz(String s) {
        return s == null ? "" : s;
    }
}
