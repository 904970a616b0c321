package com.kelvo.tarn.cli;

import com.google.gson.Gson;
import com.google.gson.GsonBuilder;
import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonNull;
import com.google.gson.JsonObject;
import com.google.gson.JsonPrimitive;
import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import java.lang.reflect.RecordComponent;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import javax.wbem.cim.UnsignedInt;

/** Writes what the library returns as JSON. */
final class Json {
    private static final Gson writer =
        new GsonBuilder().serializeNulls().disableHtmlEscaping().setPrettyPrinting().create();

    private Json() {
    }

    static String text(Object value) {
        return writer.toJson(element(value));
    }

    private static JsonElement element(Object value) {
        if (value == null) {
            return JsonNull.INSTANCE;
        } else if (value instanceof String text) {
            return new JsonPrimitive(text);
        } else if (value instanceof Boolean truth) {
            return new JsonPrimitive(truth);
        } else if (value instanceof UnsignedInt number) {
            return new JsonPrimitive(number.bigIntegerValue());
        } else if (value instanceof Number number) {
            return new JsonPrimitive(number);
        } else if (value instanceof Object[] array) {
            return list(Arrays.asList(array));
        } else if (value instanceof List<?> list) {
            return list(list);
        } else if (value instanceof Map<?, ?> map) {
            JsonObject object = new JsonObject();
            map.forEach((name, member) -> object.add(name.toString(), element(member)));
            return object;
        } else if (value instanceof TrInstance instance) {
            return instance(instance);
        } else if (value instanceof Throwable thrown) {
            JsonObject object = new JsonObject();
            object.addProperty("class", thrown.getClass().getName());
            object.addProperty("message", thrown.getMessage());
            return object;
        } else if (value instanceof Record record) {
            return record(record);
        }
        throw new IllegalStateException("no JSON for " + value.getClass());
    }

    private static JsonArray list(List<?> list) {
        JsonArray array = new JsonArray(list.size());
        list.forEach(item -> array.add(element(item)));
        return array;
    }

    private static JsonObject record(Record record) {
        JsonObject object = new JsonObject();
        for (RecordComponent component : record.getClass().getRecordComponents()) {
            try {
                object.add(component.getName(), element(component.getAccessor().invoke(record)));
            } catch (ReflectiveOperationException unreadable) {
                throw new IllegalStateException(unreadable);
            }
        }
        return object;
    }

    private static JsonObject instance(TrInstance instance) {
        JsonObject properties = new JsonObject();
        for (TrProperty property : instance.getTrClass().getProperties()) {
            Object value = instance.get(property);
            if (value != null) {
                properties.add(property.getName(),
                               value instanceof TrInstance other ? reference(other) : element(value));
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
                object.add("deviceID", element(instance.get(property)));
            }
        }
        return object;
    }
}
