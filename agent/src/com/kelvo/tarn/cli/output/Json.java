package com.kelvo.tarn.cli.output;

import com.google.gson.Gson;
import com.google.gson.GsonBuilder;
import com.google.gson.JsonNull;
import com.google.gson.JsonObject;
import com.google.gson.JsonPrimitive;
import com.google.gson.JsonSerializationContext;
import com.google.gson.JsonSerializer;
import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import java.io.PrintWriter;
import java.util.LinkedHashMap;
import java.util.Map;
import javax.wbem.cim.UnsignedInt;

/** Writes what the library returns as JSON: a result class as an object with its fields, in their order. */
public final class Json {
    private static final Gson LINE_WRITER = new GsonBuilder().serializeNulls().disableHtmlEscaping()
        .registerTypeHierarchyAdapter(UnsignedInt.class, (JsonSerializer<UnsignedInt>) (number, type, context) ->
            new JsonPrimitive(number.bigIntegerValue()))
        .registerTypeHierarchyAdapter(TrInstance.class, (JsonSerializer<TrInstance>) (instance, type, context) ->
            instance(instance, context))
        .registerTypeHierarchyAdapter(Throwable.class, (JsonSerializer<Throwable>) (thrown, type, context) ->
            exception(thrown))
        .create();
    private static final Gson WRITER = LINE_WRITER.newBuilder().setPrettyPrinting().create();

    private Json() {
    }

    /**
     * {@return a document, on several lines and without a newline at its end}
     *
     * @param value what the library returned, or lists and maps of that
     */
    public static String text(Object value) {
        return WRITER.toJson(value);
    }

    /**
     * Writes a document on one line, however long it is.
     *
     * @param value what the library returned, or lists and maps of that
     * @param out where
     */
    public static void printLine(Object value, PrintWriter out) {
        LINE_WRITER.toJson(value, out);
        out.println();
    }

    /**
     * {@return the value, an object, with one member more}
     *
     * @param value what is an object in JSON
     * @param name the member's
     * @param member its value
     */
    public static Object with(Object value, String name, Object member) {
        JsonObject object = LINE_WRITER.toJsonTree(value).getAsJsonObject();
        object.add(name, LINE_WRITER.toJsonTree(member));
        return object;
    }

    /**
     * {@return an object with these members}
     *
     * @param members pairs of a name and a value
     */
    public static Map<String, Object> object(Object... members) {
        Map<String, Object> object = new LinkedHashMap<>();
        for (int i = 0; i < members.length; i += 2) {
            object.put((String) members[i], members[i + 1]);
        }
        return object;
    }

    private static JsonObject exception(Throwable thrown) {
        JsonObject object = new JsonObject();
        object.addProperty("class", thrown.getClass().getName());
        object.addProperty("message", thrown.getMessage());
        return object;
    }

    private static JsonObject instance(TrInstance instance, JsonSerializationContext context) {
        JsonObject properties = new JsonObject();
        for (TrProperty property : instance.getTrClass().getProperties()) {
            Object value = instance.get(property);
            if (value != null) {
                properties.add(property.getName(),
                               value instanceof TrInstance ? reference((TrInstance) value) : context.serialize(value));
            }
        }
        JsonObject object = new JsonObject();
        object.addProperty("class", instance.getTrClass().getName());
        object.add("properties", properties);
        return object;
    }

    /** An instance inside another is named, not written out. */
    private static JsonObject reference(TrInstance instance) {
        JsonObject object = new JsonObject();
        object.addProperty("class", instance.getTrClass().getName());
        for (TrProperty property : instance.getTrClass().getProperties()) {
            if (property.getName().equals("deviceID")) {
                Object id = instance.get(property);
                object.add("deviceID", id == null ? JsonNull.INSTANCE : new JsonPrimitive(id.toString()));
            }
        }
        return object;
    }
}
